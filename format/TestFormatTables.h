#pragma once
#include <array>
#include <cstdint>
#include <string_view>

namespace KT_FMT {

// The stored names of the built-in patterns, by number; each is exactly ten characters.
inline constexpr std::array<std::string_view, 24> testFormatNames{
    "LEGACY    ", "VERT. BARS", "HOR. BARS ", "VERT. LINE", "HOR. LINE ", "HATCH     ",
    "BLOWN PIX.", "FONT SIZES", "ALL FONTS ", "SPEED/DENS", "BOX       ", "SALES SHOW",
    "HALF TONE ", "VAR. HATCH", "HALF HATCH", "V. LINES 1", "V LINES 16", "CONTS TEST",
    "CHK PRINT ", "FMT PARAM.", "TWO LINES ", "DATE/TIME ", "LINEARITY ", "QUALITY   "};

// Pattern 8: one label line and the alphabet per font, as long as the pattern length reaches `leastLength`.
struct FontLine {
    int32_t font;
    std::string_view label;
    int32_t y;
    uint32_t leastLength;
};

inline constexpr std::array<FontLine, 6> allFontsLines{{
    {0, "OCR-B - 0123456789", 40, 84},
    {1, "GILL - 0123456789", 160, 203},
    {2, "HELV - 0123456789", 280, 323},
    {3, "CENTURY - 0123456789", 400, 443},
    {4, "ARIALBLD - 0123456789", 520, 563},
    {5, "ARIAL - 0123456789", 640, 683},
}};

// Pattern 11: every text at size 12.
struct PlacedText {
    int32_t x;
    int32_t y;
    int32_t font;
    int32_t orientation;
    std::string_view text;
};

// Fonts 2 and 3 carry each other's labels here compared with pattern 8; that is how the pattern stands.
inline constexpr std::array<PlacedText, 12> salesShowTexts{{
    {80, 100, 4, 0, "Velmora"},
    {230, 160, 4, 0, "Demo"},
    {220, 320, 4, 0, "Test1"},
    {410, 360, 4, 3, "Test2"},
    {350, 530, 4, 2, "Test3"},
    {160, 510, 4, 1, "Test4"},
    {50, 740, 2, 0, "Century"},
    {350, 740, 1, 0, "Gill-B"},
    {50, 840, 3, 0, "Helvetica"},
    {350, 840, 0, 0, "OCR-B"},
    {50, 940, 4, 0, "Arial-B"},
    {350, 940, 5, 0, "Arial"},
}};

// Pattern 19: the layout of the parameter sheet, one for the 640-dot head and one for every other width.
struct SheetGeometry {
    int32_t start;
    int32_t size;
    int32_t line;
    std::array<int32_t, 4> columns;  // without the centring offset
    int32_t height;
};

inline constexpr SheetGeometry narrowSheet{45, 6, 30, {5, 175, 330, 500}, 600};
inline constexpr SheetGeometry wideSheet{65, 10, 50, {10, 360, 650, 1000}, 1000};

inline constexpr std::array<std::string_view, 4> orientationNames{"normal", "mirrore", "180\xb0/normal",
                                                                  "180\xb0/mirror"};

// The stored logos lie one behind the other: 256 x 112 dots, then 512 x 224 dots, one bit per dot.
inline constexpr int32_t smallLogoWidth = 256;
inline constexpr int32_t smallLogoHeight = 112;
inline constexpr int32_t largeLogoWidth = 512;
inline constexpr int32_t largeLogoHeight = 224;
inline constexpr uint32_t smallLogoBytes = smallLogoWidth / 8 * smallLogoHeight;
inline constexpr uint32_t largeLogoBytes = largeLogoWidth / 8 * largeLogoHeight;
inline constexpr uint32_t sampleFormatBytes = 18322;

}  // namespace KT_FMT
