// Text through the built ktr-render with its default fonts, against the same texts drawn here.
#include <gtest/gtest.h>

#include <algorithm>

#include "fonts/Font.h"
#include "fonts/FontProvider.h"
#include "graphics/Image.h"
#include "tests/cli/CliRunner.h"
#include "tests/fonts/FontTestSupport.h"

using namespace cli_test;

namespace {

const std::vector<std::string> fullKta1 = {"in=in.esc", "printer=KTA1", "trim=n", "width=1", "height=1"};

class TextEndToEnd : public testing::Test {
protected:
    void SetUp() override
    {
        fontProvider = std::make_unique<FontProvider>();
        fontProvider->init(fonttest::builtFontDirectory());
        processFont.flushCache();
    }
    void TearDown() override
    {
        processFont.flushCache();
        fontProvider.reset();
    }
};

}  // namespace

TEST_F(TextEndToEnd, EveryOrientationAlignmentSpacingAndReversalAsTheImageDrawsThem)
{
    const RunResult run = runCase("text_orientations.esc", "in.esc", fullKta1);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.errors, "");
    Image expected(640, 608);
    Area area;
    expected.drawText(20, 60, 10, 5, "Left 0", 0, &area, 0, 0, false);
    expected.drawText(320, 120, 10, 4, "Centre 1", 1, &area, 1, 0, false);
    expected.drawText(600, 300, 10, 2, "Right 2", 2, &area, 2, 5 * 65536, false);
    expected.drawText(200, 500, 9, 0, "Reversed 3 \x80", 3, &area, 0, 0, true);
    expected.drawText(-20, 580, 12, 6, "clipped", 0, &area, 0, 0, false);
    const PixelCanvas want = PixelCanvas::of(expected);
    int ink = 0;
    for (int p : want.pixels)
        ink += p;
    EXPECT_GT(ink, 2000) << "the texts drew something";
    EXPECT_TRUE(canvasOf(readBitmap(run.dir / "in.esc.bmp")) == want);
}

TEST_F(TextEndToEnd, AnUnmappedFontFailsWithItsTextAndPosition)
{
    const RunResult run = runCase("text_unmapped_font.esc", "in.esc", {"in=in.esc", "showvariables=y"});
    EXPECT_EQ(run.output, "Font::drawText() error acquiring size 42: 1\nError at position: 39\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST_F(TextEndToEnd, AnUnmappedFontAfterEightSizesOfAnotherFailsWithItsTextInsteadOfCrashing)
{
    // Eight texts in font 5 at sizes 10 to 17 take every size slot of the font cache, then font 25 is asked for.
    const RunResult run =
        runCase("unmapped_font_after_eight_sizes.esc", "in.esc", {"in=in.esc", "showvariables=y"});
    EXPECT_EQ(run.output, "Font::drawText() error acquiring size 25: 1\nError at position: 247\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST_F(TextEndToEnd, ATallyWhosePenWrapsComesBackOverTheRasterAsItsMarksOneByOne)
{
    const RunResult run = runCase("tally_wraps.esc", "in.esc", fullKta1);
    EXPECT_EQ(run.exitCode, 0);
    Image expected(640, 608);
    Area area;
    expected.drawText(100, 300, 10, 5, fonttest::oneByOne('|', 200000), 0, &area, 0, 0, false);
    expected.drawText(300, 100, 8, 5, fonttest::oneByOne('|', 200000), 1, &area, 2, -65536, false);
    const PixelCanvas want = PixelCanvas::of(expected);
    EXPECT_GT(std::count(want.pixels.begin(), want.pixels.end(), 1), 20000) << "the marks came back";
    EXPECT_TRUE(canvasOf(readBitmap(run.dir / "in.esc.bmp")) == want);
}
