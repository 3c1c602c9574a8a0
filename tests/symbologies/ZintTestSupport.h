#pragma once
// Paints library symbols into a raster, reads their modules back, and asks zint's own command line for the
// matrix it makes of the same data, to compare module for module.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "format/gs1/AiNumberReplace.h"
#include "graphics/Image.h"
#include "graphics/TransformedContext.h"
#include "tests/support/ScanSupport.h"

namespace zinttest {

// The identifier table is the format's to fill; a symbol tested on its own needs it filled by hand.
class GS1Fixture : public ::testing::Test {
protected:
    void SetUp() override { KT_FMT::fillGS1Table(); }
};

// A matrix as rows of '0' and '1'.
using Modules = std::vector<std::string>;

// The matrix that `zint --dump` prints for `arguments`, each row cut to `width` modules.
inline Modules zintDump(const std::string& arguments, size_t width)
{
    Modules rows;
    const std::string out = scantest::runTool("zint", "--dump " + arguments);
    std::string bits;
    for (char c : out) {
        if (c == '\n') {
            rows.push_back(bits.substr(0, width));
            bits.clear();
        } else if (c != ' ') {
            const int nibble = c <= '9' ? c - '0' : c - 'A' + 10;
            for (int b = 3; b >= 0; --b)
                bits += ((nibble >> b) & 1) != 0 ? '1' : '0';
        }
    }
    return rows;
}

// The modules of `rows` by `columns` at (x, y), one dot of each `module` square read.
inline Modules readModules(Image& image, int32_t x, int32_t y, int32_t rows, int32_t columns, int32_t module)
{
    Modules out(static_cast<size_t>(rows), std::string(static_cast<size_t>(columns), '0'));
    for (int32_t r = 0; r < rows; ++r)
        for (int32_t c = 0; c < columns; ++c)
            out[r][c] = image.getPixel(x + c * module, y + r * module) != 0 ? '1' : '0';
    return out;
}

// `m` turned clockwise by quarter turns.
inline Modules turned(const Modules& m, int32_t quarterTurns)
{
    Modules out = m;
    for (int32_t t = 0; t < quarterTurns; ++t) {
        const size_t rows = out.size(), columns = rows == 0 ? 0 : out[0].size();
        Modules next(columns, std::string(rows, '0'));
        for (size_t r = 0; r < columns; ++r)
            for (size_t c = 0; c < rows; ++c)
                next[r][c] = out[rows - 1 - c][r];
        out = next;
    }
    return out;
}

// The number of inked dots of the raster.
inline int32_t inkCount(Image& image)
{
    int32_t count = 0;
    for (int32_t y = 0; y < static_cast<int32_t>(image.getHeight()); ++y)
        for (int32_t col = 0; col < static_cast<int32_t>(image.getWidth() / 32); ++col)
            count += __builtin_popcount(image.getLong(y, col));
    return count;
}

// An unturned view at (x, y), as the matrix drawables give their symbols.
inline TransformedContext placed(Image& image, int32_t x, int32_t y)
{
    return TransformedContext(&image, Point{x, y}, makeRotation(0, 1));
}

inline std::string zxingRead(Image& image, const std::string& format)
{
    return scantest::scanInk(image, [&](const std::string& path) { return scantest::zxing(path, format); });
}

}  // namespace zinttest
