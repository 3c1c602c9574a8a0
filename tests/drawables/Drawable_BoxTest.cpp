#include "drawables/Drawable_Box.h"

#include <gtest/gtest.h>

#include <sstream>

#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"

using KT_FMT::KT_Format;

namespace {

class BoxTest : public testing::Test {
protected:
    void parse(const std::string& records)
    {
        std::istringstream in("BOXES     " + records + "\xff");
        format.parse(in, nullptr, 0);
    }

    Image image{96, 40};
    KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(BoxTest, EveryThicknessPairDrawsItsBars)
{
    const int32_t x = 10, y = 5, w = 50, h = 20;
    for (int32_t vertical : {0, 1, 3, 20}) {
        for (int32_t horizontal : {0, 1, 4, 50}) {
            SCOPED_TRACE(testing::Message() << "vertical " << vertical << " horizontal " << horizontal);
            parse(boxRecord(x, y, w, h, vertical, horizontal));
            PixelCanvas expected(96, 40);
            expected.frame(x, y, w, h, vertical, horizontal);
            EXPECT_TRUE(PixelCanvas::of(image) == expected);
            EXPECT_EQ(format.getDrawables().size(), 1u);
        }
    }
}

TEST_F(BoxTest, AFrameOfThicknessOneIsOneDotWide)
{
    Image large(160, 80);
    KT_Format onLarge(nullptr, &large, nullptr);
    std::istringstream in("FRAME     " + boxRecord(3, 4, 100, 50, 1, 1) + "\xff");
    onLarge.parse(in, nullptr, 0);
    PixelCanvas expected(160, 80);
    expected.fill(3, 4, 100, 50);
    expected.fill(4, 5, 98, 48, true);
    EXPECT_TRUE(PixelCanvas::of(large) == expected);
}

TEST_F(BoxTest, AnEmptyBoxDrawsNothing)
{
    parse(boxRecord(200, 300, 0, 0, 0, 0) + boxRecord(5, 5, 0, 7, 0, 0));
    EXPECT_TRUE(PixelCanvas::of(image) == PixelCanvas(96, 40));
}

TEST_F(BoxTest, AFrameLeavingTheRasterOnTheRightKeepsItsLeftBarOnly)
{
    parse(boxRecord(60, 2, 40, 30, 2, 3) + boxRecord(0, 0, 2, 2, 0, 0));
    PixelCanvas expected(96, 40);
    expected.fill(60, 2, 3, 30);
    expected.fill(0, 0, 2, 2);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(BoxTest, AFrameLeavingAtTheBottomLosesEverythingFromTheFirstBarThatFails)
{
    // The left bar already runs off the bottom, so nothing at all is drawn.
    parse(boxRecord(10, 30, 20, 20, 2, 3));
    PixelCanvas expected(96, 40);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
    // Two horizontal lines only: the top one stands, the bottom one is off.
    parse(boxRecord(10, 5, 20, 40, 2, 0));
    expected.fill(10, 5, 20, 2);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(BoxTest, ASolidBoxOffTheRasterEndsThePaint)
{
    expectFailure<KT_ERROR::drawable_off_format>([&] { parse(boxRecord(90, 0, 7, 5, 0, 0)); },
                                                 "rectangle off image(x/y/w/h): (90/0/7/5)");
}

TEST_F(BoxTest, AThicknessAboveTheSizeIsRefused)
{
    expectFailure<KT_ERROR::illegal_content>(
        [&] { parse(boxRecord(0, 0, 10, 10, 0, 11)); },
        "box: horizontal thickness ( 11 ) greater than total box width ( 10 )");
    EXPECT_EQ(format.getDrawables().size(), 0u);
    expectFailure<KT_ERROR::illegal_content>(
        [&] { parse(boxRecord(0, 0, 10, 10, 11, 11)); },
        "box: horizontal thickness ( 11 ) greater than total box width ( 10 )");
    expectFailure<KT_ERROR::illegal_content>(
        [&] { parse(boxRecord(0, 0, 10, 10, 12, 10)); },
        "box: vertical thickness ( 12 ) greater than total box height ( 10 )");
}

TEST_F(BoxTest, AThicknessEqualToTheSizeFillsTheBox)
{
    parse(boxRecord(4, 4, 10, 6, 6, 10));
    PixelCanvas expected(96, 40);
    expected.fill(4, 4, 10, 6);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(BoxTest, TheProcessWideOffsetMovesTheBox)
{
    KT_AC::drawableXOffset = 32;
    parse(boxRecord(0, 1, 3, 3, 0, 0));
    KT_AC::drawableXOffset = 0;
    PixelCanvas expected(96, 40);
    expected.fill(32, 1, 3, 3);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(BoxTest, ABadDigitIsTheFieldReadersFault)
{
    expectFailure<KT_ERROR::parse_time_error>(
        [&] { parse("\x1bL000000000000010000100001X00000"); },
        "non-digit or too many sign characters read while parsing number: X");
    EXPECT_EQ(format.getDrawables().size(), 0u);
}

TEST_F(BoxTest, BoxesAreStaticAndPaintedInTheStaticStage)
{
    parse(boxRecord(0, 0, 5, 5, 0, 0));
    const KT_AC::Drawable& box = format.getDrawables()[0];
    EXPECT_TRUE(box.getIsStatic());
    EXPECT_FALSE(box.getPaintedAtParse());
    EXPECT_EQ(box.getContentId(), "");
}
