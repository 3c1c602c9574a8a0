// Boxes, inverted areas and graphics through the built ktr-render, compared dot for dot
// with pictures painted here by hand.
#include <gtest/gtest.h>

#include "graphics/Image.h"
#include "tests/cli/CliRunner.h"
#include "tests/support/ScanSupport.h"

using namespace cli_test;

namespace {

const std::vector<std::string> fullKta1 = {"in=in.esc", "printer=KTA1", "trim=n", "fontpath=f", "width=1",
                                           "height=1"};
const std::string fullKta1Output =
    "\nFound file: in.esc (640x608)\nFontpath: f/\n\nFound format start sequence...\n"
    "\nWriting bitmap to in.esc.bmp\n";

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

unsigned char pattern(int32_t r, int32_t b)
{
    return static_cast<unsigned char>((0x5A ^ (r * 29 + b * 7)) & 0xFF);
}

}  // namespace

TEST(DrawablesEndToEnd, FramesOfEveryThicknessPair)
{
    PixelCanvas expected(640, 608);
    const int32_t verticals[] = {0, 1, 2, 5};
    const int32_t horizontals[] = {0, 1, 3, 6};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            expected.frame(10 + j * 60, 10 + i * 40, 50, 30, verticals[i], horizontals[j]);
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
    expected.graphic(0, 0, 3, 5, pattern);
    expected.graphic(16, 10, 4, 5, pattern);
    expected.graphic(37, 20, 5, 5, pattern);
    expectPicture(runCase("graphics_shifts.esc", "in.esc", fullKta1), expected);
}

TEST(DrawablesEndToEnd, GraphicBytesMayBeEscapeAndTheEndMark)
{
    PixelCanvas expected(640, 608);
    expected.graphic(64, 3, 4, 4, [](int32_t r, int32_t b) { return (r + b) % 2 == 0 ? 0x1B : 0xFF; });
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
    expected.graphic(0, 0, 4, 4, [](int32_t r, int32_t b) { return (r + b) % 2 == 0 ? 0x1B : 0xFF; });
    EXPECT_TRUE(canvasOf(bitmap) == expected);
}

TEST(DrawablesEndToEnd, DataMatrixRecordsAtThreeTurnsOneOfThemReversedReadBack)
{
    const RunResult run = runCase("datamatrix.esc", "in.esc", fullKta1);
    EXPECT_EQ(run.output, fullKta1Output);
    EXPECT_EQ(run.exitCode, 0);
    const Bitmap bitmap = readBitmap(run.dir / "in.esc.bmp");
    struct Symbol {
        int32_t left, top;
        bool reversed;
        const char* content;
    };
    const Symbol symbols[] = {{64, 60, false, "KTR-RENDER 2026"}, {368, 60, true, "Hello, World!"},
                              {64, 360, false, "ABCDEFGHIJKL"}};
    for (const Symbol& symbol : symbols) {
        SCOPED_TRACE(symbol.content);
        // Each symbol on a raster of its own; the reversed one is turned back to black on white over its
        // 18 x 18 modules of 6 dots and the module of quiet zone all round, at 400, 100.
        Image image(256, 248);
        for (int32_t y = 0; y < 248; ++y)
            for (int32_t x = 0; x < 256; ++x) {
                const int32_t px = symbol.left + x, py = symbol.top + y;
                const bool ink = bitmap.pixels[py][px] == 1;
                const bool inverted = symbol.reversed && px >= 400 && py >= 100 && px < 400 + 120 && py < 100 + 120;
                if (ink != inverted)
                    image.setPixel(x, y, 1);
            }
        EXPECT_EQ(scantest::scanInk(image, scantest::dmtx), symbol.content);
        EXPECT_EQ(scantest::scanInk(image, [](const std::string& path) { return scantest::zxing(path, "DataMatrix"); }),
                  symbol.content);
    }
}

TEST(DrawablesEndToEnd, ABadDataMatrixParameterFailsWhileReadingABadEciWhilePainting)
{
    const struct {
        const char* file;
        const char* report;
    } cases[] = {
        {"datamatrix_bad_ecc.esc", "datamatrix: only supporting ecc level 200, not 0\nError at position: 50\n"},
        {"datamatrix_bad_eci.esc", "datamatrix: eci parameter must be 6 characters long: 12\nError at position: 56\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const RunResult run = runCase(c.file, "in.esc", fullKta1);
        EXPECT_EQ(run.output, fullKta1Output + c.report);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
    }
}
