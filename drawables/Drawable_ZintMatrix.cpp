#include "drawables/Drawable_ZintMatrix.h"

#include <string>

#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "graphics/TransformedContext.h"
#include "symbologies/DMRectCode.h"
#include "symbologies/HanxinCode.h"
#include "symbologies/MicroQrCode.h"
#include "symbologies/QrCode.h"

namespace KT_AC {

void Drawable_ZintMatrix::readFields(std::istream& stream)
{
    readCommonFields(stream);
    size = KT_FMT::readNumber(stream, 2, true);
    module = KT_FMT::readNumber(stream, 2, true);
    margin = KT_FMT::readNumber(stream, 5, true);
    level = KT_FMT::readNumber(stream, 1, true);
    inputMode = KT_FMT::readNumber(stream, 1, true);
    flag = KT_FMT::readFlag(stream);
}

template <class Self, class Make>
void Drawable_ZintMatrix::read(std::istream& stream, KT_FMT::KT_Format& format, Make make)
{
    auto drawable = std::make_unique<Self>(format);
    drawable->readFields(stream);
    drawable->symbol = make(*drawable);
    format.getDrawables().add(std::move(drawable));
}

// The view is not turned: the symbol reads its matrix turned instead.
void Drawable_ZintMatrix::redraw(Image& image)
{
    const std::string content = format->getElements().getElement(contentId).getResult();
    TransformedContext context(&image, Point{x, y}, makeRotation(0, 1));
    symbol->setRotation(orientation);
    symbol->paint(content, context);
}

void Drawable_QrCode::read(std::istream& stream, KT_FMT::KT_Format& format)
{
    Drawable_ZintMatrix::read<Drawable_QrCode>(stream, format, [](const Drawable_QrCode& d) {
        return std::make_unique<QrCode>(d.size, d.module, d.level, d.inputMode);
    });
}

void Drawable_HanxinCode::read(std::istream& stream, KT_FMT::KT_Format& format)
{
    Drawable_ZintMatrix::read<Drawable_HanxinCode>(stream, format, [](const Drawable_HanxinCode& d) {
        return std::make_unique<HanxinCode>(d.size, d.module, d.level, d.inputMode);
    });
}

void Drawable_DMRectCode::read(std::istream& stream, KT_FMT::KT_Format& format)
{
    Drawable_ZintMatrix::read<Drawable_DMRectCode>(stream, format, [](const Drawable_DMRectCode& d) {
        return std::make_unique<DMRectCode>(d.size, d.module, d.inputMode);
    });
}

void Drawable_MicroQrCode::read(std::istream& stream, KT_FMT::KT_Format& format)
{
    Drawable_ZintMatrix::read<Drawable_MicroQrCode>(stream, format, [](const Drawable_MicroQrCode& d) {
        return std::make_unique<MicroQrCode>(d.size, d.module, d.level, d.inputMode);
    });
}

}  // namespace KT_AC
