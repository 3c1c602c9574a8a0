#include "drawables/Drawable_Box.h"

#include <memory>

#include "errors/KT_Error.h"
#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"

namespace KT_AC {

using KT_FMT::readNumber;

void Drawable_Box::read(std::istream& stream, KT_FMT::KT_Format& format)
{
    auto box = std::make_unique<Drawable_Box>(format);
    box->x = readNumber(stream, 5, true) + drawableXOffset;
    box->y = readNumber(stream, 5, true);
    box->width = readNumber(stream, 5, true);
    box->height = readNumber(stream, 5, true);
    box->verticalThickness = readNumber(stream, 5, true);
    box->horizontalThickness = readNumber(stream, 5, true);
    if (box->horizontalThickness > box->width)
        throw KT_ERROR::illegal_content(KT_ERROR::text("box: horizontal thickness ( ", box->horizontalThickness,
                                                       " ) greater than total box width ( ", box->width, " )"));
    if (box->verticalThickness > box->height)
        throw KT_ERROR::illegal_content(KT_ERROR::text("box: vertical thickness ( ", box->verticalThickness,
                                                       " ) greater than total box height ( ", box->height, " )"));
    format.getDrawables().add(std::move(box));
}

void Drawable_Box::redraw(Image& image)
{
    if (horizontalThickness == 0 && verticalThickness == 0) {
        image.rectangle(x, y, width, height, 1);
        return;
    }
    // A frame that runs off the raster is cut short silently, in the order left, right, top, bottom;
    // only a solid box off the raster is an error.
    try {
        if (horizontalThickness != 0) {
            image.rectangle(x, y, horizontalThickness, height, 1);
            image.rectangle(x + width - horizontalThickness, y, horizontalThickness, height, 1);
        }
        if (verticalThickness != 0) {
            image.rectangle(x, y, width, verticalThickness, 1);
            image.rectangle(x, y + height - verticalThickness, width, verticalThickness, 1);
        }
    } catch (const KT_ERROR::drawable_off_format&) {
    }
}

}  // namespace KT_AC
