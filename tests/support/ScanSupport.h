#pragma once
// Reads symbols back with the installed scanners: the ink is cut out with a margin of paper, saved as a
// bitmap and handed to the tool. A missing scanner fails the test; it never skips it.
#include <gtest/gtest.h>
#include <stdio.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
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

// Saves the inked box of `image` within `region` (the whole raster if empty), with `margin` dots of paper on
// every side, as a one-bit bitmap.
inline void saveInk(Image& image, const std::string& path, Area region = Area{}, int32_t margin = 40)
{
    if (region.right == 0 && region.bottom == 0)
        region = Area{0, 0, static_cast<int32_t>(image.getWidth()) - 1, static_cast<int32_t>(image.getHeight()) - 1};
    int32_t left = region.right + 1, right = -1, top = region.bottom + 1, bottom = -1;
    for (int32_t yy = region.top; yy <= region.bottom; ++yy)
        for (int32_t col = region.left / 32; col <= region.right / 32; ++col) {
            if (image.getLong(yy, col) == 0)
                continue;
            for (int32_t xx = std::max(col * 32, region.left); xx <= std::min(col * 32 + 31, region.right); ++xx)
                if (image.getPixel(xx, yy)) {
                    top = std::min(top, yy);
                    bottom = yy;
                    left = std::min(left, xx);
                    right = std::max(right, xx);
                }
        }
    if (bottom < 0)
        left = right = top = bottom = 0;
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

// Cuts the ink of `image` (within `region`, if given) into a bitmap in a fresh directory and returns what
// `reader` makes of it.
template <class Reader>
std::string scanInk(Image& image, Reader reader, Area region = Area{})
{
    fonttest::TempDir dir;
    const std::string path = dir.file("ink.bmp");
    saveInk(image, path, region);
    return reader(path);
}

}  // namespace scantest
