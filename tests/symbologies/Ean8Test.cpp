#include "symbologies/Ean8.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/symbologies/EanUpcTestSupport.h"

using namespace eantest;

namespace {

Ean8 plain(const std::string& content, int32_t module = 1, int32_t quarterTurns = 0, int32_t reversed = 0)
{
    return Ean8(content, 0, 0, module, 100, quarterTurns, false, false, reversed);
}

// The symbol in modules as the published patterns give it, without quiet zones.
std::string standardModules(const std::string& eight)
{
    return "101" + leftModules(eight.substr(0, 4), "LLLL") + "01010" + rightModules(eight.substr(4)) + "101";
}

class Ean8Drawing : public fonttest::FontFixture {};

}  // namespace

TEST(Ean8, KnownNumbersGetTheirPublishedCheckDigits)
{
    const std::pair<const char*, const char*> cases[] = {
        {"9638507", "96385074"}, {"5512345", "55123457"}, {"4006381", "40063812"}, {"0000000", "00000000"}};
    for (const auto& [data, eight] : cases) {
        SCOPED_TRACE(data);
        Ean8 symbol = plain(data);
        EXPECT_EQ(symbol.getText(), eight);
        EXPECT_EQ(symbol.checkDigit(), eight[7] - '0');
        EXPECT_EQ(symbol.getData(), data);
    }
}

TEST(Ean8, AllDigitsComeFromTheFirstPatternSet)
{
    const Ean8 symbol = plain("9638507");
    EXPECT_EQ(symbol.getBars(), "111" "3112" "1114" "1411" "1213" "11111" "1231" "3211" "1312" "1132" "111");
    EXPECT_EQ(symbol.getBitString(), standardModules("96385074"));
}

TEST(Ean8, APlainSymbolHasNoQuietZoneAtAll)
{
    const Ean8 symbol = plain("9638507", 3);
    EXPECT_EQ(symbol.getQuietLeft(), 0);
    EXPECT_EQ(symbol.getQuietRight(), 0);
    EXPECT_EQ(symbol.getBitString(), widen(standardModules("96385074"), 3));
}

TEST(Ean8, AReversedSymbolCarriesSevenModulesOnBothSides)
{
    Ean8 symbol = plain("9638507", 3, 0, 1);
    EXPECT_EQ(symbol.getQuietLeft(), 21);
    EXPECT_EQ(symbol.getQuietRight(), 21);
    EXPECT_EQ(symbol.getBitString(), zeros(21) + widen(standardModules("96385074"), 3) + zeros(21));
    EXPECT_EQ(symbol.quietZone(0), 21);
    EXPECT_EQ(symbol.quietZone(1), 21);
    EXPECT_EQ(symbol.quietZone(2), 0);
}

TEST(Ean8, AtHalfATurnTheBitStringIsMirrored)
{
    std::string mirrored = plain("9638507", 2, 0, 1).getBitString();
    std::reverse(mirrored.begin(), mirrored.end());
    EXPECT_EQ(plain("9638507", 2, 2, 1).getBitString(), mirrored);
}

TEST_F(Ean8Drawing, DigitLineFillsTheTwoHalvesBetweenTheGuards)
{
    // The font size is the integer part of m * 26 * 72 / 781.74 + 0.5.
    const std::pair<int32_t, int32_t> modulesAndSizes[] = {{2, 5}, {3, 7}, {4, 10}};
    for (const auto& [m, size] : modulesAndSizes) {
        SCOPED_TRACE(m);
        Image image(640, 320);
        Ean8 symbol("9638507", 32, 20, m, 200, 0, false, true, 0);
        Area area{};
        symbol.paint(image, area);
        Image reference(640, 320);
        paintDigitLineByHand(reference, symbol.getBitString(), 32, 20, 200, m, "9638", size,
                             {{3 * m, 28 * m}, {36 * m, 28 * m}},
                             {{"9638", 17 * m, size, 26 * m, 3}, {"5074", 50 * m, size, 26 * m, 3}});
        EXPECT_TRUE(sameRaster(image, reference));
    }
}

TEST_F(Ean8Drawing, ReversedDigitsMoveRightWithTheQuietZone)
{
    // Turned back to positive, the reversed symbol is the plain one seven modules further right.
    Image reversed(640, 320);
    Area area{};
    Ean8("9638507", 32, 20, 3, 200, 0, false, true, 1).paint(reversed, area);
    reversed.rectangle(area.left, area.top, area.right - area.left + 1, area.bottom - area.top + 1, 2);
    Image plainImage(640, 320);
    Ean8("9638507", 32 + 21, 20, 3, 200, 0, false, true, 0).paint(plainImage, area);
    EXPECT_TRUE(sameRaster(reversed, plainImage));
}
