// Every linear symbology with content and parameters from the input, built and painted as the barcode
// drawable does, on a raster large enough for any of them, at every turn.
#include <cstddef>
#include <cstdint>
#include <string>

#include "errors/KT_Error.h"
#include "fuzz/FuzzSupport.h"
#include "graphics/Image.h"
#include "symbologies/Code128.h"
#include "symbologies/Code25Int.h"
#include "symbologies/Code39.h"
#include "symbologies/Ean13.h"
#include "symbologies/Ean8.h"
#include "symbologies/ITF14.h"
#include "symbologies/UpcA.h"
#include "symbologies/UpcE.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz::silenceOutput();
    fuzz::installFonts();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 4)
        return 0;
    // Type, module, height and the flags, then the content.
    const int type = data[0] % 9;
    const int32_t module = 1 + data[1] % 4, height = 11 + data[2] % 200, turns = data[3] % 4;
    const bool text = (data[3] & 4) != 0, check = (data[3] & 8) != 0;
    const int32_t reversed = (data[3] & 16) != 0 ? 1 : 0, extra = data[3] >> 5;
    const std::string content(reinterpret_cast<const char*>(data + 4), size - 4);
    Image image(2560, 1216);
    Area area{};
    const int32_t x = 600, y = 600;
    try {
        switch (type) {
        case 0: Ean8(content, x, y, module, height, turns, check, text, reversed).paint(image, area); break;
        case 1: Ean13(content, x, y, module, height, turns, check, text, reversed).paint(image, area); break;
        case 2: Code25Int(content, x, y, module, height, turns, check, text, reversed, extra).paint(image, area); break;
        case 3: Code39(content, x, y, module, height, turns, check, text, reversed, extra).paint(image, area); break;
        case 4: Code128(content, x, y, module, height, turns, check, text, reversed, extra % 5).paint(image, area); break;
        case 5: UpcA(content, x, y, module, height, turns, check, text, reversed).paint(image, area); break;
        case 6: UpcE(content, x, y, module, height, turns, check, text, reversed).paint(image, area); break;
        default: ITF14(content, x, y, module, height, turns, check, text, reversed, extra).paint(image, area); break;
        }
    } catch (const KT_ERROR::kt_exception&) {
    }
    return 0;
}
