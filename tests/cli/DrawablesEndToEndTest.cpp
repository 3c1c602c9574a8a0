// Boxes, inverted areas and graphics through the built ktr-render, compared dot for dot
// with pictures painted here by hand.
#include <gtest/gtest.h>

#include "tests/cli/CliRunner.h"
#include "tests/support/PixelCanvas.h"

using namespace cli_test;

namespace {

const std::vector<std::string> fullKta1 = {"in=in.esc", "printer=KTA1", "trim=n", "fontpath=f", "width=1",
                                           "height=1"};
const std::string fullKta1Output =
    "\nFound file: in.esc (640x608)\nFontpath: f/\n\nFound format start sequence...\n"
    "\nWriting bitmap to in.esc.bmp\n";

PixelCanvas canvasOf(const Bitmap& bitmap)
{
    PixelCanvas canvas(bitmap.width, bitmap.height);
    for (int32_t y = 0; y < bitmap.height; ++y)
        for (int32_t x = 0; x < bitmap.width; ++x)
            canvas.at(x, y) = bitmap.pixels[y][x];
    return canvas;
}

void expectPicture(const RunResult& run, const PixelCanvas& expected)
{
    EXPECT_EQ(run.output, fullKta1Output);
    EXPECT_EQ(run.exitCode, 0);
    const Bitmap bitmap = readBitmap(run.dir / "in.esc.bmp");
    ASSERT_EQ(bitmap.width, 640);
    ASSERT_EQ(bitmap.height, 608);
    EXPECT_EQ(bitmap.x, 0);
    EXPECT_EQ(bitmap.y, 0);
    EXPECT_TRUE(canvasOf(bitmap) == expected) << "ink " << bitmap.inkCount() << " against " << [&] {
        int ink = 0;
        for (int p : expected.pixels)
            ink += p;
        return ink;
    }();
}

void frame(PixelCanvas& canvas, int32_t x, int32_t y, int32_t w, int32_t h, int32_t vertical, int32_t horizontal)
{
    if (vertical == 0 && horizontal == 0)
        canvas.fill(x, y, w, h);
    if (horizontal != 0) {
        canvas.fill(x, y, horizontal, h);
        canvas.fill(x + w - horizontal, y, horizontal, h);
    }
    if (vertical != 0) {
        canvas.fill(x, y, w, vertical);
        canvas.fill(x, y + h - vertical, w, vertical);
    }
}

unsigned char pattern(int32_t r, int32_t b)
{
    return static_cast<unsigned char>((0x5A ^ (r * 29 + b * 7)) & 0xFF);
}

template <class Pattern>
void graphic(PixelCanvas& canvas, int32_t x, int32_t y, int32_t widthBytes, int32_t rows, Pattern bytes)
{
    for (int32_t r = 0; r < rows; ++r)
        for (int32_t b = 0; b < widthBytes; ++b)
            for (int bit = 0; bit < 8; ++bit)
                if ((bytes(r, b) >> (7 - bit)) & 1)
                    canvas.at(x + 8 * b + bit, y + r) = 1;
}

}  // namespace

TEST(DrawablesEndToEnd, FramesOfEveryThicknessPair)
{
    PixelCanvas expected(640, 608);
    const int32_t verticals[] = {0, 1, 2, 5};
    const int32_t horizontals[] = {0, 1, 3, 6};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            frame(expected, 10 + j * 60, 10 + i * 40, 50, 30, verticals[i], horizontals[j]);
    expectPicture(runCase("frames.esc", "in.esc", fullKta1), expected);
}

TEST(DrawablesEndToEnd, AFrameWhoseRightBarLeavesTheRasterKeepsItsLeftBar)
{
    PixelCanvas expected(640, 608);
    expected.fill(600, 20, 3, 30);
    expected.fill(0, 0, 4, 4);
    expectPicture(runCase("frame_off_right.esc", "in.esc", fullKta1), expected);
}

TEST(DrawablesEndToEnd, ASolidBoxOneDotPastTheEdgeFailsWithItsPosition)
{
    const RunResult run = runCase("solid_off_right.esc", "in.esc", fullKta1);
    EXPECT_EQ(run.output, fullKta1Output +
                              "rectangle off image(x/y/w/h): (600/10/41/5)\n"
                              "Error at position: 77\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST(DrawablesEndToEnd, AnInvertedAreaActsOnStaticBoxesBeforeAndAfterIt)
{
    PixelCanvas expected(640, 608);
    expected.fill(0, 0, 40, 20);
    expected.fill(30, 30, 40, 20);
    expected.fill(20, 10, 32, 30, true);
    expectPicture(runCase("invert_around_boxes.esc", "in.esc", fullKta1), expected);
}

TEST(DrawablesEndToEnd, InvertingTwiceRestores)
{
    PixelCanvas expected(640, 608);
    expected.fill(0, 0, 40, 20);
    expectPicture(runCase("invert_twice.esc", "in.esc", fullKta1), expected);
}

TEST(DrawablesEndToEnd, GraphicsAtZeroSixteenAndThirtySeven)
{
    PixelCanvas expected(640, 608);
    graphic(expected, 0, 0, 3, 5, pattern);
    graphic(expected, 16, 10, 4, 5, pattern);
    graphic(expected, 37, 20, 5, 5, pattern);
    expectPicture(runCase("graphics_shifts.esc", "in.esc", fullKta1), expected);
}

TEST(DrawablesEndToEnd, GraphicBytesMayBeEscapeAndTheEndMark)
{
    PixelCanvas expected(640, 608);
    graphic(expected, 64, 3, 4, 4, [](int32_t r, int32_t b) { return (r + b) % 2 == 0 ? 0x1B : 0xFF; });
    expectPicture(runCase("graphics_esc_ff.esc", "in.esc", fullKta1), expected);
}

TEST(DrawablesEndToEnd, AGraphicOneDotOverTheEdgeLeavesItsBytesToBeReadAsRecords)
{
    PixelCanvas expected(640, 608);
    expected.fill(0, 0, 3, 3);
    expectPicture(runCase("graphics_over_edge.esc", "in.esc", fullKta1), expected);
}

TEST(DrawablesEndToEnd, TheTrimmedSaveOfAGraphicKeepsItsPlace)
{
    const RunResult run = runCase("graphics_esc_ff.esc", "in.esc", {"in=in.esc", "printer=KTA1"});
    EXPECT_EQ(run.exitCode, 0);
    const Bitmap bitmap = readBitmap(run.dir / "in.esc.bmp");
    EXPECT_EQ(bitmap.x, 64);
    EXPECT_EQ(bitmap.y, 3);
    EXPECT_EQ(bitmap.width, 32);
    EXPECT_EQ(bitmap.height, 4);
    PixelCanvas expected(32, 4);
    graphic(expected, 0, 0, 4, 4, [](int32_t r, int32_t b) { return (r + b) % 2 == 0 ? 0x1B : 0xFF; });
    EXPECT_TRUE(canvasOf(bitmap) == expected);
}
