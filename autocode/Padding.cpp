#include "autocode/Padding.h"

#include "format/ContentEscapeReader.h"

namespace KT_AC {

std::string Padding::apply(const std::string& text, bool negative) const
{
    std::string result = negative ? "-" : "";
    if (alignment == ALIGN_NONE)
        return result + text;
    // Escapes show as one character each, so the fill is measured against what is shown.
    const uint32_t shown = KT_FMT::displayLength(text);
    if (shown >= width)
        return result + text;
    const std::string fill(width - shown - (negative ? 1 : 0), padCharacter);
    return alignment == ALIGN_LEFT ? result + fill + text : result + text + fill;
}

}  // namespace KT_AC
