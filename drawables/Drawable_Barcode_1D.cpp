#include "drawables/Drawable_Barcode_1D.h"

#include <memory>

#include "errors/KT_Error.h"
#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "symbologies/Code128.h"
#include "symbologies/Code25Int.h"
#include "symbologies/Code39.h"
#include "symbologies/Ean13.h"
#include "symbologies/Ean8.h"
#include "symbologies/ITF14.h"
#include "symbologies/UpcA.h"
#include "symbologies/UpcE.h"

namespace KT_AC {

namespace {

uint16_t readField(std::istream& stream, uint32_t width)
{
    return static_cast<uint16_t>(KT_FMT::readNumber(stream, width, true));
}

}  // namespace

void Drawable_Barcode_1D::create(std::istream& stream, KT_FMT::KT_Format& format, int32_t type)
{
    auto drawable = std::make_unique<Drawable_Barcode_1D>(format);
    drawable->barcodeType = static_cast<uint32_t>(type);
    drawable->readCommonFields(stream);
    drawable->barHeight = readField(stream, 5);
    drawable->moduleWidth = readField(stream, 2);
    switch (type) {
    case 0:
    case 1:
    case 5:
    case 6:
        drawable->textFlag = readField(stream, 1);
        drawable->checkFlag = readField(stream, 1);
        break;
    case 2:
    case 3:
    case 8:
        drawable->wideWidth = readField(stream, 2);
        drawable->textFlag = readField(stream, 1);
        drawable->checkFlag = readField(stream, 1);
        break;
    case 4:
        drawable->textFlag = readField(stream, 1);
        drawable->checkFlag = readField(stream, 1);
        drawable->encodingType = readField(stream, 2);
        break;
    default:
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("undefined barcode type ", type));
    }
    format.getDrawables().add(std::move(drawable));
}

void Drawable_Barcode_1D::redraw(Image& image)
{
    const std::string content = format->getElements().getElement(contentId).getResult();
    try {
        paintSymbol(image, content);
    } catch (const KT_ERROR::drawable_off_format&) {
        // A symbol that leaves the raster stays as far as it got; the label goes on.
    }
}

void Drawable_Barcode_1D::paintSymbol(Image& image, const std::string& content)
{
    const bool text = textFlag != 0, check = checkFlag != 0;
    const int32_t turns = orientation, inverse = reversed ? 1 : 0;
    switch (barcodeType) {
    case 0:
        Ean8(content, x, y, moduleWidth, barHeight, turns, check, text, inverse).paint(image, paintedArea);
        break;
    case 1:
        Ean13(content, x, y, moduleWidth, barHeight, turns, check, text, inverse).paint(image, paintedArea);
        break;
    case 2:
        Code25Int(content, x, y, moduleWidth, barHeight, turns, check, text, inverse, wideWidth)
            .paint(image, paintedArea);
        break;
    case 3:
        Code39(content, x, y, moduleWidth, barHeight, turns, check, text, inverse, wideWidth)
            .paint(image, paintedArea);
        break;
    case 4:
        Code128(content, x, y, moduleWidth, barHeight, turns, check, text, inverse, encodingType)
            .paint(image, paintedArea);
        break;
    case 5:
        UpcA(content, x, y, moduleWidth, barHeight, turns, check, text, inverse).paint(image, paintedArea);
        break;
    case 6:
        UpcE(content, x, y, moduleWidth, barHeight, turns, check, text, inverse).paint(image, paintedArea);
        break;
    case 8:
        ITF14(content, x, y, moduleWidth, barHeight, turns, check, text, inverse, wideWidth)
            .paint(image, paintedArea);
        break;
    default:
        throw KT_ERROR::bad_escape_sequence("undefined barcode type");
    }
}

}  // namespace KT_AC
