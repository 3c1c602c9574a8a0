#include "symbologies/UpcA.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/symbologies/EanUpcTestSupport.h"

using namespace eantest;

namespace {

UpcA plain(const std::string& content, int32_t module = 1, int32_t quarterTurns = 0, int32_t reversed = 0)
{
    return UpcA(content, 0, 0, module, 100, quarterTurns, false, false, reversed);
}

// The symbol in modules as the published patterns give it, without quiet zones.
std::string standardModules(const std::string& twelve)
{
    return "101" + leftModules(twelve.substr(0, 6), "LLLLLL") + "01010" + rightModules(twelve.substr(6)) + "101";
}

class UpcADrawing : public fonttest::FontFixture {};

}  // namespace

TEST(UpcA, KnownNumbersGetTheirPublishedCheckDigits)
{
    const std::pair<const char*, const char*> cases[] = {
        {"03600029145", "036000291452"}, {"01234567890", "012345678905"}, {"00000000000", "000000000000"}};
    for (const auto& [data, twelve] : cases) {
        SCOPED_TRACE(data);
        UpcA symbol = plain(data);
        EXPECT_EQ(symbol.getText(), twelve);
        EXPECT_EQ(symbol.checkDigit(), twelve[11] - '0');
        EXPECT_EQ(symbol.getData(), data);
    }
}

TEST(UpcA, NineModulesOfQuietZoneStandOnBothSidesReversedOrNot)
{
    for (const int32_t reversed : {0, 1}) {
        SCOPED_TRACE(reversed);
        UpcA symbol = plain("03600029145", 3, 0, reversed);
        EXPECT_EQ(symbol.getQuietLeft(), 27);
        EXPECT_EQ(symbol.getQuietRight(), 27);
        EXPECT_EQ(symbol.getBitString(), zeros(27) + widen(standardModules("036000291452"), 3) + zeros(27));
        EXPECT_EQ(symbol.quietZone(0), 27);
        EXPECT_EQ(symbol.quietZone(1), 27);
        EXPECT_EQ(symbol.quietZone(5), 0);
    }
}

TEST(UpcA, AllDigitsComeFromTheFirstPatternSet)
{
    EXPECT_EQ(plain("03600029145").getBars(),
              "111" "3211" "1411" "1114" "3211" "3211" "3211" "11111" "2122" "3112" "2221" "1132" "1231" "2122" "111");
}

TEST(UpcA, AtHalfATurnTheBitStringIsMirrored)
{
    std::string mirrored = plain("03600029145").getBitString();
    std::reverse(mirrored.begin(), mirrored.end());
    EXPECT_EQ(plain("03600029145", 1, 2).getBitString(), mirrored);
}

TEST_F(UpcADrawing, OuterDigitsAreSmallerAndStandInTheQuietZones)
{
    // With f = m * 33 * 72 / 977.175 the sizes are the integer parts of f + 0.5 and 0.75 f + 0.5.
    struct Case {
        int32_t m;
        int32_t big;
        int32_t small;
    };
    const Case cases[] = {{2, 5, 4}, {3, 7, 5}, {4, 10, 7}};
    for (const auto& [m, big, small] : cases) {
        SCOPED_TRACE(m);
        Image image(640, 320);
        UpcA symbol("03600029145", 32, 20, m, 200, 0, false, true, 0);
        Area area{};
        symbol.paint(image, area);
        Image reference(640, 320);
        paintDigitLineByHand(reference, symbol.getBitString(), 32, 20, 200, m, "36000", big,
                             {{19 * m, 35 * m}, {59 * m, 35 * m}},
                             {{"0", 2 * m, small, 0, 0}, {"36000", 36 * m, big, 33 * m, 4},
                              {"29145", 76 * m, big, 33 * m, 4}, {"2", 110 * m, small, 0, 0}});
        EXPECT_TRUE(sameRaster(image, reference));
    }
}
