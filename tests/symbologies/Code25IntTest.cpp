#include "symbologies/Code25Int.h"

#include <gtest/gtest.h>

#include <string>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/ExpectFailure.h"
#include "tests/symbologies/SymbolScan.h"

namespace {

Code25Int symbol(const std::string& content, bool check, int32_t reversed = 0, int32_t wide = 3)
{
    return Code25Int(content, 0, 0, 1, 40, 0, check, false, reversed, wide);
}

}  // namespace

TEST(Code25Int, OneTwoThreeWithoutCheckPrintsALeadingZero)
{
    const Code25Int code = symbol("123", false);
    EXPECT_EQ(code.getData(), "0123");
    EXPECT_EQ(code.getText(), "0123");
}

TEST(Code25Int, OneTwoThreeWithCheckAppendsTheDigitAndNeedsNoZero)
{
    // 3 * (3 + 1) + 2 = 14; 10 - 4 = 6.
    const Code25Int code = symbol("123", true);
    EXPECT_EQ(code.getData(), "1236");
    EXPECT_EQ(code.getText(), "1236");
    // 3 * 2 + 1 = 7; 10 - 7 = 3, and the odd length takes a zero in front.
    EXPECT_EQ(symbol("12", true).getData(), "0123");
}

TEST(Code25Int, PairsInterleaveBarsOfTheFirstDigitWithSpacesOfTheSecond)
{
    // 1 is wide-narrow-narrow-narrow-wide, 2 narrow-wide-narrow-narrow-wide.
    EXPECT_EQ(symbol("12", false).getBars(), "1111" "2112111122" "211");
    EXPECT_EQ(symbol("12", false).getBitString(), "1010" "111010001010111000" "111" "0" "1");
}

TEST(Code25Int, EveryDigitHasItsPublishedPattern)
{
    // Each digit paired with 0 (narrow-narrow-wide-wide-narrow) as the space digit.
    const char* published[] = {"nnwwn", "wnnnw", "nwnnw", "wwnnn", "nnwnw",
                               "wnwnn", "nwwnn", "nnnww", "wnnwn", "nwnwn"};
    for (char digit = '0'; digit <= '9'; ++digit) {
        SCOPED_TRACE(digit);
        std::string expected = "1111";
        const char* bars = published[digit - '0'];
        const char* spaces = published[0];
        for (int e = 0; e < 5; ++e) {
            expected += bars[e] == 'w' ? '2' : '1';
            expected += spaces[e] == 'w' ? '2' : '1';
        }
        expected += "211";
        EXPECT_EQ(symbol(std::string(1, digit) + "0", false).getBars(), expected);
    }
}

TEST(Code25Int, QuietZonesOnlyWhenReversed)
{
    EXPECT_EQ(symbol("12", false, 0).getQuietLeft(), 0);
    const Code25Int reversed = Code25Int("12", 0, 0, 4, 40, 0, false, false, 1, 9);
    EXPECT_EQ(reversed.getQuietLeft(), 40);
    EXPECT_EQ(reversed.getQuietRight(), 40);
    EXPECT_EQ(reversed.getBitString().substr(0, 41), std::string(40, '0') + "1");
}

TEST(Code25Int, AWideWidthOfZeroGivesElementsOfNoPixels)
{
    EXPECT_EQ(symbol("12", false, 0, 0).getBitString(), "1010" "011010" "01");
}

TEST(Code25Int, ContentOtherThanDigitsFails)
{
    expectFailure<KT_ERROR::bad_escape_sequence>([] { symbol("", false); }, "code 2/5 Interleaved: no data ");
    expectFailure<KT_ERROR::bad_escape_sequence>([] { symbol("12a4", false); },
                                                 "code 2/5 Interleaved: non digit data a");
}

TEST(Code25Int, BarsLowerThan12DotsFail)
{
    Image image(640, 608);
    Area area{};
    Code25Int low("12", 10, 10, 2, 11, 0, false, false, 0, 5);
    expectFailure<KT_ERROR::render_time_error>([&] { low.paint(image, area); },
                                               "Code 2/5 Interleaved: bar height is too small");
}

class Code25IntScan : public fonttest::FontFixture {};

TEST_F(Code25IntScan, EveryOrientationReversedOrNotWithOrWithoutTextReadsBack)
{
    symbolscan::expectEveryVariantReads(
        [](int32_t turns, bool text, int32_t reversed) {
            return Code25Int("1234567", 64, 64, 3, 160, turns, true, text, reversed, 8);
        },
        "12345670", "ITF");
}
