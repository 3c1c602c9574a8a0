// The symbols over the barcode library with content and options from the input, painted as their drawables paint
// them, through a view anchored on a raster, at every turn, and painted a second time as a repaint does.
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "errors/KT_Error.h"
#include "format/gs1/AiNumberReplace.h"
#include "fuzz/FuzzSupport.h"
#include "graphics/Image.h"
#include "graphics/TransformedContext.h"
#include "symbologies/DMRectCode.h"
#include "symbologies/Databar.h"
#include "symbologies/HanxinCode.h"
#include "symbologies/MicroQrCode.h"
#include "symbologies/PDF417.h"
#include "symbologies/QrCode.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz::silenceOutput();
    fuzz::installFonts();
    // The symbols only ever run inside a format, whose construction fills the identifiers of the GS1 rewrite.
    KT_FMT::fillGS1Table();
    return 0;
}

namespace {

template <class Symbol>
void paintMatrix(Symbol&& symbol, int32_t turn, const std::string& content, GraphicsContext& context)
{
    symbol.setRotation(turn);
    symbol.paint(content, context);
    symbol.paint(content, context);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 6)
        return 0;
    // The kind and turn, then four option bytes read signed, as the records' number fields allow, then the content.
    const int32_t kind = data[0] % 6, turn = (data[0] / 6) % 4;
    const int32_t a = static_cast<int8_t>(data[1]), b = static_cast<int8_t>(data[2]);
    const int32_t c = static_cast<int8_t>(data[3]), d = static_cast<int8_t>(data[4]);
    const int32_t module = 1 + data[5] % 4;
    const std::string content(reinterpret_cast<const char*>(data + 6), size - 6);
    Image image(1024, 1024);
    TransformedContext context(&image, Point{512, 512}, makeRotation(0, 1));
    try {
        switch (kind) {
        case 0: paintMatrix(QrCode(a, module, b, c), turn, content, context); break;
        case 1: paintMatrix(MicroQrCode(a, module, b, c), turn, content, context); break;
        case 2: paintMatrix(HanxinCode(a, module, b, c), turn, content, context); break;
        case 3: paintMatrix(DMRectCode(a, module, c), turn, content, context); break;
        case 4: {
            PDF417 symbol(static_cast<uint8_t>(a), b, module, c * 4, d);
            symbol.setOrientation(turn);
            symbol.paint(content, context);
            symbol.paint(content, context);
            break;
        }
        default: {
            Databar symbol(static_cast<uint8_t>(a), b * 4, module, c, d);
            symbol.setOrientation(turn);
            symbol.paint(image, content, context);
            symbol.paint(image, content, context);
            break;
        }
        }
    } catch (const KT_ERROR::kt_exception&) {
    } catch (const std::out_of_range&) {
        // A GS1 string that begins with its separator has no byte before it to take along: the string
        // library's range failure ends the rewrite, by design.
    }
    return 0;
}
