// Bitmap files as loadBitmap reads them, at the stored offset and at a place of their own.
#include <cstddef>
#include <cstdint>

#include "fuzz/FuzzSupport.h"
#include "graphics/Image.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz::silenceOutput();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = fuzz::writeScratch("in.bmp", data, size);
    Image image(96, 40);
    image.loadBitmap(0, 0, path, true);
    image.loadBitmap(33, 5, path, false);
    image.getFirstUsedRow();
    return 0;
}
