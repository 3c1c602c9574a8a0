#include "drawables/Drawable_Databar.h"

#include <string>

#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "graphics/TransformedContext.h"

namespace KT_AC {

void Drawable_Databar::read(std::istream& stream, KT_FMT::KT_Format& format)
{
    auto drawable = std::make_unique<Drawable_Databar>(format);
    drawable->readCommonFields(stream);
    drawable->symbology = KT_FMT::readNumber(stream, 4, true);
    drawable->height = KT_FMT::readNumber(stream, 5, true);
    drawable->module = KT_FMT::readNumber(stream, 2, true);
    drawable->textHeight = KT_FMT::readNumber(stream, 5, true);
    drawable->option = KT_FMT::readNumber(stream, 2, true);
    drawable->symbol = std::make_unique<Databar>(drawable->symbology, drawable->height, drawable->module,
                                                 drawable->textHeight, drawable->option);
    format.getDrawables().add(std::move(drawable));
}

// The view is not turned: the symbol lays its rows turned instead, and writes its line on the raster itself.
void Drawable_Databar::redraw(Image& image)
{
    const std::string content = format->getElements().getElement(contentId).getResult();
    TransformedContext context(&image, Point{x, y}, makeRotation(0, 1));
    symbol->setOrientation(orientation);
    symbol->paint(image, content, context);
}

}  // namespace KT_AC
