#pragma once
// Reads symbols back with the installed scanners: the ink is cut out with a margin of paper, saved as a
// bitmap and handed to the tool. A missing scanner fails the test; it never skips it.
#include <gtest/gtest.h>
#include <stdio.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"

namespace scantest {

inline std::string runTool(const std::string& tool, const std::string& arguments)
{
    if (std::system(("command -v " + tool + " > /dev/null 2>&1").c_str()) != 0) {
        ADD_FAILURE() << tool << " is not installed: scripts/setup installs it";
        return "";
    }
    std::string output;
    FILE* pipe = popen((tool + " " + arguments + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) {
        ADD_FAILURE() << "cannot run " << tool;
        return "";
    }
    char buffer[4096];
    size_t got;
    while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        output.append(buffer, got);
    pclose(pipe);
    return output;
}

// Saves the inked box of `image`, with `margin` dots of paper on every side, as a one-bit bitmap.
inline void saveInk(Image& image, const std::string& path, int32_t margin = 40)
{
    const auto width = static_cast<int32_t>(image.getWidth()), height = static_cast<int32_t>(image.getHeight());
    int32_t left = width, right = -1, top = height, bottom = -1;
    for (int32_t row = 0; row < height; ++row)
        for (int32_t col = 0; col < width / 32; ++col) {
            const uint32_t word = image.getLong(row, col);
            if (word == 0)
                continue;
            top = std::min(top, row);
            bottom = row;
            left = std::min(left, col * 32 + __builtin_clz(word));
            right = std::max(right, col * 32 + 31 - __builtin_ctz(word));
        }
    if (bottom < 0) {
        left = right = top = bottom = 0;
    }
    const int32_t w = right - left + 1 + 2 * margin, h = bottom - top + 1 + 2 * margin;
    Image cut((w + 31) / 32 * 32, h);
    for (int32_t yy = top; yy <= bottom; ++yy)
        for (int32_t xx = left; xx <= right; ++xx)
            if (image.getPixel(xx, yy))
                cut.setPixel(xx - left + margin, yy - top + margin, 1);
    ASSERT_TRUE(cut.saveBitmap(0, 0, static_cast<int32_t>(cut.getWidth()), h, path));
}

// What zbarimg reads from the bitmap, raw, one symbol per line without the last line feed.
inline std::string zbar(const std::string& path)
{
    std::string read = runTool("zbarimg", "-q --raw --nodbus '" + path + "'");
    if (!read.empty() && read.back() == '\n')
        read.pop_back();
    return read;
}

// The bytes that ZXingReader reads from the bitmap, looking only for `format` ("Code128", "EAN-13", ...).
inline std::string zxing(const std::string& path, const std::string& format)
{
    return runTool("ZXingReader", "-format " + format + " -bytes '" + path + "'");
}

// What dmtxread reads from the bitmap.
inline std::string dmtx(const std::string& path)
{
    return runTool("timeout", "20 dmtxread -m 5000 '" + path + "'");
}

// Cuts the ink of `image` into a bitmap in a fresh directory and returns what `reader` makes of it.
template <class Reader>
std::string scanInk(Image& image, Reader reader)
{
    fonttest::TempDir dir;
    const std::string path = dir.file("ink.bmp");
    saveInk(image, path);
    return reader(path);
}

}  // namespace scantest
