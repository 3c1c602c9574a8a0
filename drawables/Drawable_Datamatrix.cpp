#include "drawables/Drawable_Datamatrix.h"

#include <algorithm>
#include <cstdlib>

#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "graphics/TransformedContext.h"
#include "symbologies/Datamatrix.h"

namespace KT_AC {

using KT_FMT::readNumber;

Drawable_Datamatrix::Drawable_Datamatrix(KT_FMT::KT_Format& format) : Drawable(format) {}

Drawable_Datamatrix::~Drawable_Datamatrix() = default;

void Drawable_Datamatrix::read(std::istream& stream, KT_FMT::KT_Format& format)
{
    auto drawable = std::make_unique<Drawable_Datamatrix>(format);
    drawable->readCommonFields(stream);
    drawable->module = readNumber(stream, 2, true);
    drawable->width = readNumber(stream, 3, true);
    drawable->height = readNumber(stream, 3, true);
    drawable->ecc = readNumber(stream, 3, true);
    drawable->reservedDigit = readNumber(stream, 1, true);
    drawable->reservedFlag = KT_FMT::readFlag(stream);
    drawable->symbol =
        std::make_unique<Datamatrix>(drawable->height, drawable->width, drawable->module, drawable->ecc);
    format.getDrawables().add(std::move(drawable));
}

void Drawable_Datamatrix::redraw(Image& image)
{
    const std::string value = format->getElements().getElement(contentId).getResult();
    const DotSize size = symbol->computeSize(value);
    // A reversed symbol keeps a quiet zone of one module.
    const int32_t px = reversed ? x + module : x, py = reversed ? y + module : y;
    const Matrix rotation = makeRotation(orientation, 1);
    const int32_t rw = rotation.a * size.width + rotation.b * size.height;
    const int32_t rh = rotation.c * size.width + rotation.d * size.height;
    const Point origin{px + (px - std::min(px, px + rw)), py + (py - std::min(py, py + rh))};
    TransformedContext context(&image, origin, rotation);
    symbol->paint(value, context);
    if (reversed) {
        // Deliberately the unturned size: a turned rectangle is inverted in its upright shape.
        image.rectangle(x, y, size.width + 2 * module, size.height + 2 * module, 2);
        paintedArea = Area{x, y, x + size.width + 2 * module - 1, y + size.height + 2 * module - 1};
    } else {
        paintedArea = Area{x, y, x + std::abs(rw), y + std::abs(rh)};
    }
}

}  // namespace KT_AC
