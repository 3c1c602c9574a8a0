#include "autocode/Padding.h"

#include "format/ContentEscapeReader.h"

namespace KT_AC {

std::string Padding::apply(std::string text, bool negative) const
{
    const std::string sign = negative ? "-" : "";
    if (alignment != ALIGN_NONE) {
        // Escapes show as one character each, so the fill is measured against what is shown.
        const uint32_t shown = KT_FMT::displayLength(text);
        if (shown < width) {
            const std::string fill(width - shown - (negative ? 1 : 0), padCharacter);
            return alignment == ALIGN_LEFT ? sign + fill + text : sign + text + fill;
        }
    }
    // Taken over where nothing comes in front: a tally can be a gigabyte.
    if (negative)
        return sign + text;
    return text;
}

}  // namespace KT_AC
