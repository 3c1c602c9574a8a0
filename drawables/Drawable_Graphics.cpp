#include "drawables/Drawable_Graphics.h"

#include <memory>

#include "errors/KT_Error.h"
#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "format/RecordDispatch.h"
#include "graphics/Image.h"

namespace KT_AC {

using KT_FMT::readNumber;

void Drawable_Graphics::read(std::istream& stream, KT_FMT::KT_Format& format, Image& target)
{
    auto graphic = std::make_unique<Drawable_Graphics>(format);
    graphic->x = readNumber(stream, 5, true) + drawableXOffset;
    graphic->y = readNumber(stream, 5, true);
    graphic->width = readNumber(stream, 5, true) * 8;
    graphic->height = readNumber(stream, 5, true);
    KT_FMT::readByte(stream);

    // A graphic that doesn't fit leaves its pixel bytes in the stream, to be read as records.
    const int32_t x = graphic->x, y = graphic->y;
    const bool fits = x >= 0 && x + graphic->width <= static_cast<int32_t>(target.getWidth()) && y >= 0 &&
                      y + graphic->height <= static_cast<int32_t>(target.getHeight());
    for (int32_t r = y; fits && r < y + graphic->height; ++r)
        graphic->paintRow(stream, target, r);
    format.getDrawables().add(std::move(graphic));
}

void Drawable_Graphics::paintRow(std::istream& stream, Image& target, int32_t row) const
{
    const int32_t bytes = width / 8;
    const auto shift = static_cast<uint32_t>(x % 32);
    uint32_t word = 0;
    for (int32_t i = 0; i < bytes; ++i) {
        word = word << 8 | static_cast<unsigned char>(KT_FMT::readByte(stream));
        if (i % 4 == 3) {
            target.orLongShifted(row, x / 32 + i / 4, shift, word);
            word = 0;
        }
    }
    // A negative width has no bytes, so it leaves no rest to place either.
    if (bytes < 0 || bytes % 4 == 0)
        return;
    word <<= 8 * (4 - bytes % 4);
    const int32_t col = x / 32 + bytes / 4;
    // The left-justified rest reaches into the next word only if it has bits there.
    if (shift == 0 || word << (32 - shift) == 0)
        target.orLong(row, col, word >> shift);
    else
        target.orLongShifted(row, col, shift, word);
}

void Drawable_Graphics::redraw(Image&)
{
    throw KT_ERROR::internal_autocode_error("call to unimplemented method Drawable_Graphics::redraw( Image &)");
}

}  // namespace KT_AC
