// The program's own Data Matrix encoder with content from the input, in automatic size and in the fixed size
// that the first byte picks, painted on a raster that holds the largest symbol.
#include <cstddef>
#include <cstdint>
#include <string>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "symbologies/Datamatrix.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const std::string content(reinterpret_cast<const char*>(data + 1), size - 1);
    // Rows 1 to 24 of the size table are the squares.
    const SizeRecord& fixed = Datamatrix::getSizeRecord(1 + data[0] % 24);
    Image image(160, 160);
    for (bool automatic : {true, false}) {
        try {
            Datamatrix symbol = automatic ? Datamatrix() : Datamatrix(fixed.height, fixed.width, 1, 200);
            symbol.computeSize(content);
            symbol.paint(content, image);
        } catch (const KT_ERROR::kt_exception&) {
        }
    }
    return 0;
}
