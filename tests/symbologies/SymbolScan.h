#pragma once
// Renders linear symbols in every variant and reads them back with both scanners.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "graphics/Image.h"
#include "tests/support/ScanSupport.h"

namespace symbolscan {

inline std::string zxingRead(Image& image, const std::string& format)
{
    return scantest::scanInk(image, [&](const std::string& path) { return scantest::zxing(path, format); });
}

// The number of rows from `top` to `bottom` that hold any ink.
inline int32_t inkRows(Image& image, int32_t top, int32_t bottom)
{
    int32_t rows = 0;
    for (int32_t row = top; row <= bottom; ++row) {
        bool ink = false;
        for (int32_t col = 0; col < static_cast<int32_t>(image.getWidth() / 32); ++col)
            ink = ink || image.getLong(row, col) != 0;
        rows += ink ? 1 : 0;
    }
    return rows;
}

// Paints the symbol that `make(turns, text, reversed)` builds at each orientation, with and without text,
// reversed and not. A reversed symbol is white on black; the picture is inverted over the symbol's area
// before scanning, as a reader of negative labels does.
template <class Make>
void expectEveryVariantReads(Make make, const std::string& expected, const std::string& zxingFormat,
                             const std::string& zbarExpected = "")
{
    for (int32_t turns = 0; turns < 4; ++turns)
        for (bool text : {false, true})
            for (int32_t reversed : {0, 1}) {
                SCOPED_TRACE(testing::Message() << "turns " << turns << " text " << text << " reversed " << reversed);
                Image image(1280, 1280);
                Area area{};
                auto symbol = make(turns, text, reversed);
                symbol.paint(image, area);
                if (reversed == 1)
                    image.rectangle(area.left, area.top, area.right - area.left + 1, area.bottom - area.top + 1, 2);
                EXPECT_EQ(scantest::scanInk(image, scantest::zbar), zbarExpected.empty() ? expected : zbarExpected);
                EXPECT_EQ(zxingRead(image, zxingFormat), expected);
            }
}

}  // namespace symbolscan
