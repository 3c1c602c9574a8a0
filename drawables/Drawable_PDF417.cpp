#include "drawables/Drawable_PDF417.h"

#include <string>

#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "graphics/TransformedContext.h"

namespace KT_AC {

void Drawable_PDF417::read(std::istream& stream, KT_FMT::KT_Format& format)
{
    auto drawable = std::make_unique<Drawable_PDF417>(format);
    drawable->readCommonFields(stream);
    drawable->symbology = KT_FMT::readNumber(stream, 4, true);
    drawable->columns = KT_FMT::readNumber(stream, 2, true);
    drawable->module = KT_FMT::readNumber(stream, 2, true);
    drawable->height = KT_FMT::readNumber(stream, 5, true);
    drawable->level = KT_FMT::readNumber(stream, 1, true);
    drawable->symbol = std::make_unique<PDF417>(drawable->symbology, drawable->columns, drawable->module,
                                                drawable->height, drawable->level);
    format.getDrawables().add(std::move(drawable));
}

// The view is not turned: the symbol reads its matrix turned instead.
void Drawable_PDF417::redraw(Image& image)
{
    const std::string content = format->getElements().getElement(contentId).getResult();
    TransformedContext context(&image, Point{x, y}, makeRotation(0, 1));
    symbol->setOrientation(orientation);
    symbol->paint(content, context);
}

}  // namespace KT_AC
