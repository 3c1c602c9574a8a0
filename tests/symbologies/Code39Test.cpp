#include "symbologies/Code39.h"

#include <gtest/gtest.h>

#include <string>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "symbologies/Code39Table.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/ScanSupport.h"
#include "tests/symbologies/SymbolScan.h"

namespace {

const std::string asterisk = "121121211";

Code39 symbol(const std::string& content, bool check, int32_t reversed = 0)
{
    return Code39(content, 0, 0, 1, 40, 0, check, false, reversed, 3);
}

}  // namespace

TEST(Code39, TheLetterAWithoutCheckIsThreePatternsAndTwoGaps)
{
    const Code39 a = symbol("A", false);
    EXPECT_EQ(a.getBars(), asterisk + "1" + "211112112" + "1" + asterisk);
    EXPECT_EQ(a.getText(), "*A*");
    EXPECT_EQ(a.getData(), "A");
    // Narrow 1, wide 3: each pattern is 6 narrow and 3 wide elements.
    EXPECT_EQ(a.getBitString(), "100010111011101" "0"
                                "111010100010111" "0"
                                "100010111011101");
}

TEST(Code39, EveryCharacterHasItsPublishedPattern)
{
    // The published patterns as bars (b, B) and spaces (s, S), upper case wide.
    const char* published[] = {
        "bsbSBsBsb", "BsbSbsbsB", "bsBSbsbsB", "BsBSbsbsb", "bsbSBsbsB", "BsbSBsbsb", "bsBSBsbsb", "bsbSbsBsB",
        "BsbSbsBsb", "bsBSbsBsb", "BsbsbSbsB", "bsBsbSbsB", "BsBsbSbsb", "bsbsBSbsB", "BsbsBSbsb", "bsBsBSbsb",
        "bsbsbSBsB", "BsbsbSBsb", "bsBsbSBsb", "bsbsBSBsb", "BsbsbsbSB", "bsBsbsbSB", "BsBsbsbSb", "bsbsBsbSB",
        "BsbsBsbSb", "bsBsBsbSb", "bsbsbsBSB", "BsbsbsBSb", "bsBsbsBSb", "bsbsBsBSb", "BSbsbsbsB", "bSBsbsbsB",
        "BSBsbsbsb", "bSbsBsbsB", "BSbsBsbsb", "bSBsBsbsb", "bSbsbsBsB", "BSbsbsBsb", "bSBsbsBsb", "bSbsBsBsb",
        "bSbSbSbsb", "bSbSbsbSb", "bSbsbSbSb", "bsbSbSbSb",
    };
    for (size_t i = 0; i < code39Characters.size(); ++i) {
        SCOPED_TRACE(code39Characters[i]);
        std::string widths;
        for (const char* e = published[i]; *e != '\0'; ++e)
            widths += (*e == 'B' || *e == 'S') ? '2' : '1';
        EXPECT_EQ(code39Patterns[i], widths);
        if (code39Characters[i] == '*')
            continue;
        const Code39 one = symbol(std::string(1, code39Characters[i]), false);
        EXPECT_EQ(one.getBars(), asterisk + "1" + widths + "1" + asterisk);
    }
}

TEST(Code39, WithCheckTheInputAGetsTheCheckCharacterA)
{
    const Code39 a = symbol("A", true);
    EXPECT_EQ(a.getData(), "AA");
    EXPECT_EQ(a.getText(), "*AA*");
}

TEST(Code39, TheCheckCharacterIsTheSumOfPositionsModulo43)
{
    struct Row {
        const char* content;
        const char* data;
    };
    // CODE39: 12 + 24 + 13 + 14 + 3 + 9 = 75, 75 % 43 = 32 is W; a sum below 10 lands on a digit,
    // and the punctuation after Z comes back from a value below zero (- is 45, less 48).
    const Row rows[] = {{"CODE39", "CODE39W"}, {"12", "123"}, {"-", "--"}, {"%%", "%%+"}, {"Z-", "Z-S"}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.content);
        EXPECT_EQ(symbol(r.content, true).getData(), r.data);
    }
}

TEST(Code39, ContentOutsideTheSetFails)
{
    expectFailure<KT_ERROR::bad_escape_sequence>([] { symbol("", false); }, "code 39: no data ");
    expectFailure<KT_ERROR::bad_escape_sequence>([] { symbol("ABa", false); }, "code 39: wrong data a");
    expectFailure<KT_ERROR::bad_escape_sequence>([] { symbol("A*B", false); }, "code 39: wrong data *");
    expectFailure<KT_ERROR::bad_escape_sequence>([] { symbol("A#", true); }, "code 39: wrong data #");
}

TEST(Code39, AReversedSymbolHasQuietZonesOnBothSidesANormalOneNone)
{
    const Code39 normal = Code39("A", 0, 0, 2, 40, 0, false, false, 0, 5);
    const Code39 reversed = Code39("A", 0, 0, 2, 40, 0, false, false, 1, 5);
    EXPECT_EQ(normal.getQuietLeft(), 0);
    EXPECT_EQ(normal.getBitString().front(), '1');
    EXPECT_EQ(reversed.getQuietLeft(), 30);
    EXPECT_EQ(reversed.getQuietRight(), 30);
    EXPECT_EQ(reversed.getBitString(), std::string(30, '0') + normal.getBitString() + std::string(30, '0'));
    const Code39 wide = Code39("A", 0, 0, 4, 40, 0, false, false, 1, 9);
    EXPECT_EQ(wide.getQuietLeft(), 40);
}

TEST(Code39, AWideWidthBelowTheNarrowOneIsTakenAsItIs)
{
    const Code39 zero = Code39("A", 0, 0, 2, 40, 0, false, false, 0, 0);
    // Wide elements vanish: only the narrow bars and spaces remain.
    EXPECT_EQ(zero.getBitString().size(), 3u * 6 * 2 + 2 * 2);
}

TEST(Code39, BarsLowerThan12DotsFail)
{
    Image image(640, 608);
    Area area{};
    Code39 low("A", 10, 10, 2, 11, 0, false, false, 0, 5);
    expectFailure<KT_ERROR::render_time_error>([&] { low.paint(image, area); }, "Code 39: bar height is too small");
}

class Code39Scan : public fonttest::FontFixture {};

TEST_F(Code39Scan, EveryOrientationReversedOrNotWithOrWithoutTextReadsBack)
{
    symbolscan::expectEveryVariantReads(
        [](int32_t turns, bool text, int32_t reversed) {
            return Code39("CODE-39 $/+%.", 64, 64, 3, 160, turns, false, text, reversed, 8);
        },
        "CODE-39 $/+%.", "Code39");
}

TEST_F(Code39Scan, TheWholeCharacterSetAndACheckCharacterReadBack)
{
    Image image(2560, 400);
    Area area{};
    Code39("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%", 64, 64, 3, 200, 0, true, true, 0, 8).paint(image, area);
    // The positions add up to 903, a multiple of 43: the check character is 0, which readers show as data.
    EXPECT_EQ(scantest::scanInk(image, scantest::zbar), "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%0");
    EXPECT_EQ(symbolscan::zxingRead(image, "Code39"), "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%0");
}

TEST_F(Code39Scan, TheTextLineCarriesTheAsterisks)
{
    Image withText(640, 608), withoutText(640, 608);
    Area area{};
    Code39("AB", 64, 64, 3, 160, 0, false, true, 0, 8).paint(withText, area);
    EXPECT_GT(symbolscan::inkRows(withText, 64 + 140, 64 + 159), 0) << "text below the bars";
    Code39("AB", 64, 64, 3, 160, 0, false, false, 0, 8).paint(withoutText, area);
    EXPECT_EQ(symbolscan::inkRows(withoutText, 64 + 140, 64 + 159), 20) << "bars over the whole height";
}
