#include "drawables/Drawable_Invert.h"

#include <memory>

#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"

namespace KT_AC {

using KT_FMT::readNumber;

void Drawable_Invert::read(std::istream& stream, KT_FMT::KT_Format& format)
{
    auto area = std::make_unique<Drawable_Invert>(format);
    area->x = readNumber(stream, 5, true) + drawableXOffset;
    area->y = readNumber(stream, 5, true);
    area->width = readNumber(stream, 5, true) * 8;
    area->height = readNumber(stream, 5, true);
    format.getDrawables().add(std::move(area));
}

void Drawable_Invert::redraw(Image& image)
{
    image.rectangle(x, y, width, height, 2);
}

}  // namespace KT_AC
