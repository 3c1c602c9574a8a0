#pragma once
// The published EAN/UPC module patterns and what the tests of the four classes share: bit strings built
// from those patterns, columns of a painted symbol, and symbols read back by the scanners.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "graphics/Image.h"
#include "symbologies/Barcode.h"
#include "tests/support/ScanSupport.h"

namespace eantest {

// One character a module, 1 dark: the odd (L), even (G) and right-hand (R) codes of each digit.
inline constexpr std::array<const char*, 10> oddCodes{"0001101", "0011001", "0010011", "0111101", "0100011",
                                                      "0110001", "0101111", "0111011", "0110111", "0001011"};
inline constexpr std::array<const char*, 10> evenCodes{"0100111", "0110011", "0011011", "0100001", "0011101",
                                                       "0111001", "0000101", "0010001", "0001001", "0010111"};
inline constexpr std::array<const char*, 10> rightCodes{"1110010", "1100110", "1101100", "1000010", "1011100",
                                                        "1001110", "1010000", "1000100", "1001000", "1110100"};

// Left-half codes of `digits`, each from the set its letter names: L odd, G or E even, O odd.
inline std::string leftModules(const std::string& digits, const std::string& parity)
{
    std::string modules;
    for (size_t i = 0; i < digits.size(); ++i) {
        const bool even = parity[i] == 'G' || parity[i] == 'E';
        modules += (even ? evenCodes : oddCodes)[static_cast<size_t>(digits[i] - '0')];
    }
    return modules;
}

inline std::string rightModules(const std::string& digits)
{
    std::string modules;
    for (const char digit : digits)
        modules += rightCodes[static_cast<size_t>(digit - '0')];
    return modules;
}

// Each module `module` characters wide, as the bit string has it.
inline std::string widen(const std::string& modules, int32_t module)
{
    std::string bits;
    for (const char c : modules)
        bits.append(static_cast<size_t>(module), c);
    return bits;
}

inline std::string zeros(int32_t count) { return std::string(static_cast<size_t>(count), '0'); }

// The rows of column `x` in rows top to bottom - 1 that carry ink.
inline int32_t inkRows(Image& image, int32_t x, int32_t top, int32_t bottom)
{
    int32_t count = 0;
    for (int32_t row = top; row < bottom; ++row)
        count += image.getPixel(x, row);
    return count;
}

// The lowest inked row of column `x`, or -1.
inline int32_t lowestInk(Image& image, int32_t x)
{
    for (int32_t row = static_cast<int32_t>(image.getHeight()) - 1; row >= 0; --row)
        if (image.getPixel(x, row))
            return row;
    return -1;
}

inline bool sameRaster(Image& a, Image& b)
{
    for (int32_t row = 0; row < static_cast<int32_t>(a.getHeight()); ++row)
        for (int32_t col = 0; col < static_cast<int32_t>(a.getWidth() / 32); ++col)
            if (a.getLong(row, col) != b.getLong(row, col))
                return false;
    return true;
}

struct Box {
    int32_t x;
    int32_t width;
};

struct Group {
    std::string digits;
    int32_t anchor;
    int32_t size;
    int32_t fill;
    int32_t gaps;
};

// What a symbol with its digit line looks like at orientation 0, painted by hand from its bit string
// and layout (dots from the symbol's corner): bars above half the digits' height, boxes blanked from the
// data bars, and each group stretched over its fill width by spacing in 16.16 fixed point.
inline void paintDigitLineByHand(Image& image, const std::string& bits, int32_t x, int32_t y, int32_t height,
                                 int32_t module, const std::string& block, int32_t blockSize,
                                 const std::vector<Box>& boxes, const std::vector<Group>& groups)
{
    Area measured{};
    image.printText(0, height, blockSize, 0, block, 0, &measured, true, 0, false);
    const int32_t half = (measured.bottom - measured.top + 1) / 2;
    const int32_t barHeight = height - half;
    const int32_t boxTop = barHeight - half - module;
    const int32_t baseline = measured.bottom > height ? 2 * height - measured.bottom : height;
    for (size_t c = 0; c < bits.size(); ++c)
        if (bits[c] == '1')
            image.rectangle(x + static_cast<int32_t>(c), y, 1, barHeight, 1);
    for (const Box& box : boxes)
        image.rectangle(x + box.x, y + boxTop, box.width, half + module, 0);
    for (const Group& group : groups) {
        int32_t spacing = 0;
        if (group.fill != 0) {
            Area width{};
            image.printText(0, 0, group.size, 0, group.digits, 0, &width, true, 0, false);
            spacing = (group.fill - (width.right - width.left)) * 65536 / group.gaps;
        }
        image.printText(x + group.anchor, y + baseline, group.size, 0, group.digits, 0, nullptr, true, spacing, true);
    }
}

struct Reading {
    std::string zbar;
    std::string zxing;
};

// Paints the symbol and reads it with both scanners. A reversed symbol is turned back to dark bars on
// paper first, as a reader of negatives sees it.
inline Reading paintAndScan(Barcode& symbol, int32_t reversed, const std::string& zxingFormat)
{
    Image image(2560, 1000);
    Area area{};
    symbol.paint(image, area);
    if (reversed == 1)
        image.rectangle(area.left, area.top, area.right - area.left + 1, area.bottom - area.top + 1, 2);
    return {scantest::scanInk(image, scantest::zbar),
            scantest::scanInk(image, [&](const std::string& path) { return scantest::zxing(path, zxingFormat); })};
}

}  // namespace eantest
