#include "symbologies/UpcE.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/symbologies/EanUpcTestSupport.h"

using namespace eantest;

namespace {

UpcE plain(const std::string& content, int32_t module = 1, int32_t quarterTurns = 0, int32_t reversed = 0)
{
    return UpcE(content, 0, 0, module, 100, quarterTurns, false, false, reversed);
}

// The symbol in modules as the published patterns give it, number system 0, without quiet zones.
std::string standardModules(const std::string& eight, const std::string& parity)
{
    return "101" + leftModules(eight.substr(1, 6), parity) + "010101";
}

class UpcEDrawing : public fonttest::FontFixture {};

}  // namespace

TEST(UpcE, InputGetsANumberSystemZeroAndACheckDigitByTheWeightsThreeOneFromTheRight)
{
    UpcE symbol = plain("123456");
    EXPECT_EQ(symbol.getData(), "0123456");
    // 3 * (6 + 4 + 2 + 0) + (5 + 3 + 1) = 45, so 5.
    EXPECT_EQ(symbol.checkDigit(), 5);
    EXPECT_EQ(symbol.getText(), "01234565");
}

// The pattern sets follow the check digit; each row as the standard's table for number system 0 has it.
// Where the last digit is below 5 these check digits are not the standard's (see below).
TEST(UpcE, EveryCheckDigitChoosesItsParityRow)
{
    struct Case {
        const char* content;
        const char* eight;
        const char* parity;
    };
    const Case cases[] = {
        {"123451", "01234510", "EEEOOO"}, {"123454", "01234541", "EEOEOO"}, {"123457", "01234572", "EEOOEO"},
        {"123450", "01234503", "EEOOOE"}, {"123453", "01234534", "EOEEOO"}, {"123456", "01234565", "EOOEEO"},
        {"123459", "01234596", "EOOOEE"}, {"123452", "01234527", "EOEOEO"}, {"123455", "01234558", "EOEOOE"},
        {"123458", "01234589", "EOOEOE"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.content);
        const UpcE symbol = plain(c.content);
        EXPECT_EQ(symbol.getText(), c.eight);
        EXPECT_EQ(symbol.getBitString(), zeros(9) + standardModules(c.eight, c.parity) + zeros(7));
    }
}

TEST(UpcE, NineModulesOfQuietZoneLeftAndSevenRightReversedOrNot)
{
    for (const int32_t reversed : {0, 1}) {
        SCOPED_TRACE(reversed);
        UpcE symbol = plain("123456", 3, 0, reversed);
        EXPECT_EQ(symbol.getQuietLeft(), 27);
        EXPECT_EQ(symbol.getQuietRight(), 21);
        EXPECT_EQ(symbol.getBitString(), zeros(27) + widen(standardModules("01234565", "EOOEEO"), 3) + zeros(21));
        EXPECT_EQ(symbol.quietZone(0), 27);
        EXPECT_EQ(symbol.quietZone(1), 21);
        EXPECT_EQ(symbol.quietZone(-3), 0);
    }
}

TEST(UpcE, AtHalfATurnTheBitStringIsMirrored)
{
    std::string mirrored = plain("123456").getBitString();
    std::reverse(mirrored.begin(), mirrored.end());
    EXPECT_EQ(plain("123456", 1, 2).getBitString(), mirrored);
}

TEST_F(UpcEDrawing, OuterDigitsAreSmallerAndTheSixStretchOverTheData)
{
    // With f = m * 40 * 72 / 1172.61 the sizes are the integer parts of f + 0.5 and 0.75 f + 0.5.
    struct Case {
        int32_t m;
        int32_t big;
        int32_t small;
    };
    const Case cases[] = {{2, 5, 4}, {3, 7, 6}, {4, 10, 7}};
    for (const auto& [m, big, small] : cases) {
        SCOPED_TRACE(m);
        Image image(640, 320);
        UpcE symbol("123456", 32, 20, m, 200, 0, false, true, 0);
        Area area{};
        symbol.paint(image, area);
        Image reference(640, 320);
        paintDigitLineByHand(reference, symbol.getBitString(), 32, 20, 200, m, "123456", big, {{12 * m, 42 * m}},
                             {{"0", 2 * m, small, 0, 0}, {"123456", 33 * m, big, 40 * m, 5},
                              {"5", 64 * m, small, 0, 0}});
        EXPECT_TRUE(sameRaster(image, reference));
    }
}

// Behind 123450 the standard expands to 01200000345 with check digit 5, which would choose row EOOEEO.
// The symbol keeps its own check digit 3 and row EEOOOE, so standard readers refuse it.
TEST_F(UpcEDrawing, CheckDigitOfTheSevenDigitsAsTheyStandIsPinnedByItsBarsAndReadersRefuseIt)
{
    UpcE symbol("123450", 64, 64, 3, 200, 0, false, true, 0);
    EXPECT_EQ(symbol.checkDigit(), 3);
    EXPECT_EQ(symbol.getText(), "01234503");
    EXPECT_EQ(symbol.getBars(), "111" "1222" "2212" "1411" "1132" "1231" "1123" "111111");
    EXPECT_EQ(symbol.getBitString(), zeros(27) + widen(standardModules("01234503", "EEOOOE"), 3) + zeros(21));
    Image image(2560, 1000);
    Area area{};
    symbol.paint(image, area);
    EXPECT_EQ(scantest::scanInk(image, scantest::zbar), "");
    EXPECT_EQ(scantest::scanInk(image, [](const std::string& path) { return scantest::zxing(path, "UPC-E"); }), "");
    const std::string withErrors = scantest::scanInk(image, [](const std::string& path) {
        return scantest::runTool("ZXingReader", "-errors -format UPC-E '" + path + "'");
    });
    EXPECT_NE(withErrors.find("Text:       \"01234503\""), std::string::npos) << withErrors;
    EXPECT_NE(withErrors.find("Error:      ChecksumError"), std::string::npos) << withErrors;
}
