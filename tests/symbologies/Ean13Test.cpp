#include "symbologies/Ean13.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/symbologies/EanUpcTestSupport.h"

using namespace eantest;

namespace {

Ean13 plain(const std::string& content, int32_t module = 1, int32_t quarterTurns = 0, int32_t reversed = 0)
{
    return Ean13(content, 0, 0, module, 100, quarterTurns, false, false, reversed);
}

// The symbol in modules as the published patterns give it, without quiet zones.
std::string standardModules(const std::string& thirteen, const std::string& parity)
{
    return "101" + leftModules(thirteen.substr(1, 6), parity) + "01010" + rightModules(thirteen.substr(7)) + "101";
}

class Ean13Drawing : public fonttest::FontFixture {};

}  // namespace

TEST(Ean13, EveryFirstDigitChoosesItsParityRowForTheLeftHalf)
{
    struct Case {
        const char* data;
        const char* thirteen;
        const char* parity;
    };
    // Check digits by the weights 1, 3 from the left; parities as the standard's table names them.
    const Case cases[] = {
        {"012345678901", "0123456789012", "LLLLLL"}, {"112345678901", "1123456789011", "LLGLGG"},
        {"212345678901", "2123456789010", "LLGGLG"}, {"312345678901", "3123456789019", "LLGGGL"},
        {"412345678901", "4123456789018", "LGLLGG"}, {"512345678901", "5123456789017", "LGGLLG"},
        {"612345678901", "6123456789016", "LGGGLL"}, {"712345678901", "7123456789015", "LGLGLG"},
        {"812345678901", "8123456789014", "LGLGGL"}, {"912345678901", "9123456789013", "LGGLGL"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.data);
        const Ean13 symbol = plain(c.data);
        EXPECT_EQ(symbol.getText(), c.thirteen);
        EXPECT_EQ(symbol.getBitString(), zeros(11) + standardModules(c.thirteen, c.parity));
    }
}

TEST(Ean13, FirstDigitZeroUsesTheFirstPatternSetThroughout)
{
    EXPECT_EQ(plain("012345678901").getBars(),
              "111" "2221" "2122" "1411" "1132" "1231" "1114" "11111" "1312" "1213" "3112" "3211" "2221" "2122" "111");
}

TEST(Ean13, TheFirstDigitHasNoBarsOfItsOwn)
{
    EXPECT_EQ(plain("412345678901").getBars().size(), 3u + 6 * 4 + 5 + 6 * 4 + 3);
}

TEST(Ean13, KnownNumbersGetTheirPublishedCheckDigits)
{
    const std::pair<const char*, const char*> cases[] = {
        {"400638133393", "4006381333931"}, {"590123412345", "5901234123457"}, {"978020137962", "9780201379624"},
        {"000000000000", "0000000000000"}, {"123456789012", "1234567890128"}};
    for (const auto& [data, thirteen] : cases) {
        SCOPED_TRACE(data);
        Ean13 symbol = plain(data);
        EXPECT_EQ(symbol.getText(), thirteen);
        EXPECT_EQ(symbol.checkDigit(), thirteen[12] - '0');
        EXPECT_EQ(symbol.getData(), data) << "the check digit goes to the text only";
    }
}

TEST(Ean13, TheCheckFieldIsIgnored)
{
    const Ean13 with("400638133393", 0, 0, 1, 100, 0, true, false, 0);
    EXPECT_EQ(with.getBitString(), plain("400638133393").getBitString());
    EXPECT_EQ(with.getText(), "4006381333931");
}

TEST(Ean13, QuietZoneIsElevenModulesLeftAndSevenRight)
{
    Ean13 symbol = plain("400638133393", 3);
    EXPECT_EQ(symbol.quietZone(0), 33);
    EXPECT_EQ(symbol.quietZone(1), 21);
    EXPECT_EQ(symbol.quietZone(2), 0);
    EXPECT_EQ(symbol.quietZone(-1), 0);
}

TEST(Ean13, APlainSymbolCarriesOnlyItsLeftQuietZone)
{
    const Ean13 symbol = plain("400638133393", 3);
    EXPECT_EQ(symbol.getQuietLeft(), 33);
    EXPECT_EQ(symbol.getQuietRight(), 0);
    EXPECT_EQ(symbol.getBitString(), zeros(33) + widen(standardModules("4006381333931", "LGLLGG"), 3));
}

TEST(Ean13, AReversedSymbolCarriesBothQuietZones)
{
    const Ean13 symbol = plain("400638133393", 3, 0, 1);
    EXPECT_EQ(symbol.getQuietLeft(), 33);
    EXPECT_EQ(symbol.getQuietRight(), 21);
    EXPECT_EQ(symbol.getBitString(), zeros(33) + widen(standardModules("4006381333931", "LGLLGG"), 3) + zeros(21));
}

TEST(Ean13, AtHalfATurnTheBitStringIsMirrored)
{
    std::string mirrored = plain("400638133393", 2).getBitString();
    std::reverse(mirrored.begin(), mirrored.end());
    EXPECT_EQ(plain("400638133393", 2, 2).getBitString(), mirrored);
}

TEST_F(Ean13Drawing, DigitLineStandsInTheGapsOfTheGuardsWithTheFirstDigitInTheQuietZone)
{
    // The font size is the integer part of m * 40 * 72 / 1172.61 + 0.5.
    const std::pair<int32_t, int32_t> modulesAndSizes[] = {{2, 5}, {3, 7}, {4, 10}};
    for (const auto& [m, size] : modulesAndSizes) {
        SCOPED_TRACE(m);
        Image image(640, 320);
        Ean13 symbol("400638133393", 32, 20, m, 200, 0, false, true, 0);
        Area area{};
        symbol.paint(image, area);
        Image reference(640, 320);
        paintDigitLineByHand(reference, symbol.getBitString(), 32, 20, 200, m, "006381", size,
                             {{14 * m, 42 * m}, {61 * m, 42 * m}},
                             {{"4", 3 * m, size, 0, 0}, {"006381", 35 * m, size, 40 * m, 5},
                              {"333931", 82 * m, size, 40 * m, 5}});
        EXPECT_TRUE(sameRaster(image, reference));
    }
}
