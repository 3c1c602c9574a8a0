#include "drawables/Drawable_Text.h"

#include <memory>
#include <utility>

#include "errors/KT_Error.h"
#include "fonts/Font.h"
#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "format/RecordDispatch.h"
#include "graphics/Image.h"

namespace KT_AC {

using KT_FMT::readNumber;

namespace {

int32_t readAlignment(std::istream& stream)
{
    const char c = KT_FMT::readByte(stream);
    switch (c) {
    case 'L':
        return 0;
    case 'C':
        return 1;
    case 'R':
        return 2;
    default:
        throw KT_ERROR::bad_escape_sequence(
            KT_ERROR::text("error extracting font alignment, expected C, L or R got: ", c));
    }
}

}  // namespace

void Drawable_Text::read(std::istream& stream, KT_FMT::KT_Format& format)
{
    auto text = std::make_unique<Drawable_Text>(format);
    text->fontNumber = readNumber(stream, 2, true);
    text->x = readNumber(stream, 5, true) + drawableXOffset;
    text->y = readNumber(stream, 5, true);
    text->orientation = KT_FMT::readOrientation(stream);
    text->reversed = readNumber(stream, 1, true) != 0;
    text->contentId = KT_FMT::readContentField(stream, format);
    // The element must stand earlier in the file; an append list of fixed strings counts as static.
    text->isStatic = !format.getElements().getElement(text->contentId).isVariable();
    text->size = readNumber(stream, 2, true);
    text->alignment = readAlignment(stream);
    text->spacing = readNumber(stream, 3, true) * 65536;
    format.getDrawables().add(std::move(text));
}

void Drawable_Text::paint(Image& image, int stage)
{
    if (stage == STAGE_PRELOAD)
        processFont.preloadDigits(fontNumber, size, orientation);
    else
        Drawable::paint(image, stage);
}

void Drawable_Text::redraw(Image& image)
{
    std::string value = format->getElements().getElement(contentId).getResult();
    image.drawText(x, y, size, fontNumber, std::move(value), orientation, &paintedArea, alignment, spacing, reversed);
}

}  // namespace KT_AC
