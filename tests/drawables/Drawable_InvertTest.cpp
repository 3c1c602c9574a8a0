#include "drawables/Drawable_Invert.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"

using KT_FMT::KT_Format;

namespace {

// A variable drawable that inks one fixed row of dots whenever it is redrawn.
class InkingDrawable : public KT_AC::Drawable {
public:
    InkingDrawable(KT_Format& format, int32_t row) : Drawable(format), row(row) {}
    void redraw(Image& image) override { image.rectangle(0, row, 32, 1, 1); }

private:
    int32_t row;
};

class InvertTest : public testing::Test {
protected:
    void parse(const std::string& records)
    {
        std::istringstream in("INVERT    " + records + "\xff");
        format.parse(in, nullptr, 0);
    }

    Image image{96, 40};
    KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(InvertTest, AWidthOfFourBytesCoversThirtyTwoDots)
{
    parse("\x1b#I00003000020000400005");
    PixelCanvas expected(96, 40);
    expected.fill(3, 2, 32, 5);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(InvertTest, ItFlipsStaticBoxesWhereverTheyStandInTheFile)
{
    const std::string invert = "\x1b#I00010000050000500010";
    const std::string box = "\x1bL000000000000030000200000000000";
    PixelCanvas expected(96, 40);
    expected.fill(0, 0, 30, 20);
    expected.fill(10, 5, 40, 10, true);
    parse(invert + box);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
    parse(box + invert);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(InvertTest, InvertingTwiceRestoresTheArea)
{
    const std::string invert = "\x1b#I00010000050000500010";
    parse("\x1bL000000000000030000200000000000" + invert + invert);
    PixelCanvas expected(96, 40);
    expected.fill(0, 0, 30, 20);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(InvertTest, AnAreaOffTheRasterEndsThePaint)
{
    expectFailure<KT_ERROR::drawable_off_format>([&] { parse("\x1b#I00080000000000300001"); },
                                                 "rectangle off image(x/y/w/h): (80/0/24/1)");
}

TEST_F(InvertTest, AnInvertedAreaIsVariableWithoutContent)
{
    parse("\x1b#I00000000000000100001");
    const KT_AC::Drawable& area = format.getDrawables()[0];
    EXPECT_FALSE(area.getIsStatic());
    EXPECT_FALSE(area.getPaintedAtParse());
    EXPECT_EQ(area.getContentId(), "");
}

TEST_F(InvertTest, AnUpdateOfAFormatWithAnInvertedAreaFails)
{
    parse("\x1b#I00000000000000100001");
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { format.update(); }, "Element id not found: ");
}

TEST_F(InvertTest, ABadDigitIsTheFieldReadersFault)
{
    expectFailure<KT_ERROR::parse_time_error>(
        [&] { parse("\x1b#I0000000000000 100001"); },
        "non-digit or too many sign characters read while parsing number:  ");
    EXPECT_EQ(format.getDrawables().size(), 0u);
}

TEST_F(InvertTest, TheProcessWideOffsetMovesTheArea)
{
    KT_AC::drawableXOffset = 32;
    parse("\x1b#I00000000010000100002");
    KT_AC::drawableXOffset = 0;
    PixelCanvas expected(96, 40);
    expected.fill(32, 1, 8, 2);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(InvertTest, ItFlipsTheVariableDrawablesBeforeItButNotThoseAfter)
{
    parse("");
    format.getDrawables().add(std::make_unique<InkingDrawable>(format, 0));
    std::istringstream record("00000000000000400002");
    KT_AC::Drawable_Invert::read(record, format);
    format.getDrawables().add(std::make_unique<InkingDrawable>(format, 1));
    format.getDrawables().paintAll(image, KT_AC::STAGE_VARIABLE);
    // Row 0 was inked and flipped back; row 1 was flipped, then inked, and stays so.
    PixelCanvas expected(96, 40);
    expected.fill(0, 1, 32, 1);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}
