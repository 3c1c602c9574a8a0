// The format parser from the byte behind ESC F, with the paint that follows it and the trimmed save, as the
// renderer runs them on a KTA1 raster; failures end as the renderer's handlers end them.
#include <cstddef>
#include <cstdint>

#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz::silenceOutput();
    fuzz::installFonts();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::parseFormat(data, size);
    return 0;
}
