#pragma once
#include <cstdint>
#include <string>

namespace KT_AC {

// Fits a text to a width. The alignment names the side that is filled: left puts the fill
// before the text, the reverse of justified text, and stays so.
struct Padding {
    enum Alignment : uint8_t { ALIGN_NONE = 0, ALIGN_LEFT = 1, ALIGN_RIGHT = 2 };

    char padCharacter = ' ';
    uint32_t width = 0;
    Alignment alignment = ALIGN_NONE;

    // A negative value gets a '-' in front of everything, and the sign takes one place of the fill.
    std::string apply(std::string text, bool negative) const;
};

}  // namespace KT_AC
