#include "symbologies/ITF14.h"

#include <gtest/gtest.h>

#include <string>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "symbologies/Code25Int.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/ExpectFailure.h"
#include "tests/symbologies/SymbolScan.h"

namespace {

ITF14 symbol(const std::string& content, bool showText = false, int32_t reversed = 0)
{
    return ITF14(content, 32, 32, 2, 120, 0, false, showText, reversed, 5);
}

}  // namespace

TEST(ITF14, TheCheckDigitIsAlwaysAppended)
{
    // From the right: 3 * (3+1+9+7+5+3+1) + (2+0+8+6+4+2) = 109; 10 - 9 = 1.
    const ITF14 code = symbol("1234567890123");
    EXPECT_EQ(code.getData(), "12345678901231");
    EXPECT_EQ(code.getText(), "12345678901231");
    EXPECT_EQ(code.getBars(), Code25Int::interleave("12345678901231"));
}

TEST(ITF14, QuietZonesAreAlwaysThereWithTheFrameWidth)
{
    const ITF14 code = symbol("1234567890123");
    EXPECT_EQ(code.quietZone(0), 34);
    EXPECT_EQ(code.quietZone(1), 34);
    EXPECT_EQ(code.quietZone(2), 4);
    EXPECT_EQ(code.getQuietLeft(), 34);
    EXPECT_EQ(code.getQuietRight(), 34);
    const std::string& bits = code.getBitString();
    EXPECT_EQ(bits.substr(0, 35), std::string(34, '0') + "1");
    EXPECT_EQ(bits.substr(bits.size() - 35), "1" + std::string(34, '0'));
    const ITF14 wide = ITF14("1234567890123", 0, 0, 4, 120, 0, false, false, 0, 9);
    EXPECT_EQ(wide.getQuietLeft(), 48);
}

TEST(ITF14, TheLengthIsTestedBeforeTheDigits)
{
    expectFailure<KT_ERROR::bad_escape_sequence>([] { symbol("12345678901234"); },
                                                 "ITF-14: data length is14 instead of 13");
    expectFailure<KT_ERROR::bad_escape_sequence>([] { symbol("12a"); }, "ITF-14: data length is3 instead of 13");
    expectFailure<KT_ERROR::bad_escape_sequence>([] { symbol(""); }, "ITF-14: data length is0 instead of 13");
    expectFailure<KT_ERROR::bad_escape_sequence>([] { symbol("123456789012a"); }, "ITF-14: non digit data a");
}

TEST(ITF14, WithoutTextThereIsNoFrame)
{
    Image image(1280, 608);
    Area area{};
    symbol("1234567890123").paint(image, area);
    EXPECT_EQ(image.getPixel(32, 32), 0) << "the quiet zone stays white";
    EXPECT_EQ(image.getPixel(32 + 34, 32), 1) << "the first bar";
    EXPECT_EQ(area.right - area.left + 1, static_cast<int32_t>(symbol("1234567890123").getBitString().size()));
}

class ITF14Text : public fonttest::FontFixture {};

TEST_F(ITF14Text, WithTextTheBearerFrameRunsAroundTheQuietZones)
{
    Image image(1280, 608);
    Area area{};
    ITF14 code = symbol("1234567890123", true);
    code.paint(image, area);
    const int32_t length = static_cast<int32_t>(code.getBitString().size());
    // The frame is 4 dots thick: two narrow widths. Its bottom bar ends where the bars end.
    int32_t barBottom = 32;
    while (image.getPixel(32 + 34, barBottom + 1) == 1)
        ++barBottom;
    for (int32_t t = 0; t < 4; ++t) {
        SCOPED_TRACE(t);
        EXPECT_EQ(image.getPixel(32 + 10, 32 + t), 1) << "top bar";
        EXPECT_EQ(image.getPixel(32 + 10, barBottom - t), 1) << "bottom bar";
        EXPECT_EQ(image.getPixel(32 + t, 32 + 30), 1) << "left bar";
        EXPECT_EQ(image.getPixel(32 + length - 1 - t, 32 + 30), 1) << "right bar";
    }
    EXPECT_EQ(image.getPixel(32 + 10, 32 + 4), 0);
    EXPECT_EQ(image.getPixel(32 + 4, 32 + 30), 0);
    EXPECT_EQ(image.getPixel(32 + length - 5, 32 + 30), 0);
    EXPECT_EQ(image.getPixel(32 - 1, 32 + 30), 0);
    EXPECT_EQ(image.getPixel(32 + length, 32 + 30), 0);
}

TEST(ITF14, BarsLowerThan12DotsFail)
{
    Image image(1280, 608);
    Area area{};
    ITF14 low("1234567890123", 10, 10, 2, 11, 0, false, false, 0, 5);
    expectFailure<KT_ERROR::render_time_error>([&] { low.paint(image, area); }, "ITF-14: bar height is too small");
}

TEST_F(ITF14Text, EveryOrientationReversedOrNotWithOrWithoutTextReadsBack)
{
    symbolscan::expectEveryVariantReads(
        [](int32_t turns, bool text, int32_t reversed) {
            return ITF14("1234567890123", 64, 64, 3, 200, turns, false, text, reversed, 8);
        },
        "12345678901231", "ITF");
}
