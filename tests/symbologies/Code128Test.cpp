#include "symbologies/Code128.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "errors/KT_Error.h"
#include "format/ContentEscapeReader.h"
#include "graphics/Image.h"
#include "symbologies/Code128Table.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/ScanSupport.h"
#include "tests/support/VirtualSlots.h"

namespace {

constexpr int32_t AUTO = 0, SET_A = 1, SET_B = 2, SET_C = 3;

// The widths of the Code 128 symbols as the standard publishes them, by symbol value.
const char* const published[107] = {
    "212222", "222122", "222221", "121223", "121322", "131222", "122213", "122312", "132212", "221213",
    "221312", "231212", "112232", "122132", "122231", "113222", "123122", "123221", "223211", "221132",
    "221231", "213212", "223112", "312131", "311222", "321122", "321221", "312212", "322112", "322211",
    "212123", "212321", "232121", "111323", "131123", "131321", "112313", "132113", "132311", "211313",
    "231113", "231311", "112133", "112331", "132131", "113123", "113321", "133121", "313121", "211331",
    "231131", "213113", "213311", "213131", "311123", "311321", "331121", "312113", "312311", "332111",
    "314111", "221411", "431111", "111224", "111422", "121124", "121421", "141122", "141221", "112214",
    "112412", "122114", "122411", "142112", "142211", "241211", "221114", "413111", "241112", "134111",
    "111242", "121142", "121241", "114212", "124112", "124211", "411212", "421112", "421211", "212141",
    "214121", "412121", "111143", "111341", "131141", "114113", "114311", "411113", "411311", "113141",
    "114131", "311141", "411131", "211412", "211214", "211232", "2331112",
};

std::unique_ptr<Code128> symbol(const std::string& content, int32_t encoding = AUTO, int32_t reversed = 0,
                                int32_t module = 1, int32_t quarterTurns = 0)
{
    return std::make_unique<Code128>(content, 0, 0, module, 100, quarterTurns, false, false, reversed, encoding);
}

// The bar digits of a run of symbol values, check symbol and stop written out among them.
std::string rows(std::initializer_list<int> values)
{
    std::string bars;
    for (const int value : values)
        bars += published[value];
    return bars;
}

std::string asc(int byte) { return "\\<ASC(" + std::to_string(byte) + ")>"; }

std::string zxingCode128(const std::string& path) { return scantest::zxing(path, "Code128"); }

}  // namespace

TEST(Code128, EachTableSymbolSpansElevenModulesWithEvenBarsAndTheStopThirteen)
{
    for (size_t value = 0; value < code128Patterns.size(); ++value) {
        SCOPED_TRACE(value);
        const std::string widths = code128Patterns[value];
        int modules = 0, barModules = 0;
        for (size_t i = 0; i < widths.size(); ++i) {
            modules += widths[i] - '0';
            barModules += i % 2 == 0 ? widths[i] - '0' : 0;
        }
        EXPECT_EQ(modules, value == 106 ? 13 : 11);
        EXPECT_EQ(barModules % 2, 0);
    }
}

TEST(Code128, EverySymbolValueHasThePublishedWidths)
{
    // Each value stands behind Start B as a character or a function; the start values stand alone.
    const char* const functions[] = {"FNC3", "FNC2", "SHIFT", "C128_C", "C128_B", "C128_A", "FNC1",
                                     "C128_START_A", "C128_START_B", "C128_START_C"};
    for (int value = 0; value < 106; ++value) {
        SCOPED_TRACE(value);
        const std::string data = value < 96 ? asc(value + 32) : std::string("\\<") + functions[value - 96] + ">";
        const std::string expected =
            value < 103 ? std::string(published[104]) + published[value] + published[(104 + value) % 103]
                        : std::string(published[value]) + published[value % 103];
        EXPECT_EQ(symbol(value < 103 ? "\\<C128_START_B>" + data : data)->getBars(), expected + published[106]);
    }
}

TEST(Code128, SetAPutsControlCharactersBehindTheCapitals)
{
    for (int byte = 0; byte < 96; ++byte) {
        SCOPED_TRACE(byte);
        const int value = byte < 32 ? byte + 64 : byte - 32;
        EXPECT_EQ(symbol(asc(byte), SET_A)->getBars(), rows({103, value, (103 + value) % 103, 106}));
    }
}

TEST(Code128, SetCEncodesEachDigitPairAsItsNumber)
{
    for (int pair = 0; pair < 100; ++pair) {
        SCOPED_TRACE(pair);
        const std::string digits = {static_cast<char>('0' + pair / 10), static_cast<char>('0' + pair % 10)};
        const auto code = symbol(digits, SET_C);
        EXPECT_EQ(code->getBars(), rows({105, pair, (105 + pair) % 103, 106}));
        EXPECT_EQ(code->getText(), digits);
    }
}

TEST(Code128, AutomaticSelectionSwitchesBetweenTheSets)
{
    struct Case {
        const char* name;
        std::string content;
        std::string bars;
        std::string text;
    };
    const Case cases[] = {
        {"no run at all: set B", "AB12", rows({104, 33, 34, 17, 18, 19, 106}), "AB12"},
        {"four digits: set C", "1234", rows({105, 12, 34, 82, 106}), "1234"},
        {"lower case first, then code C", "ab1234", rows({104, 65, 66, 99, 12, 34, 95, 106}), "ab1234"},
        {"digit run behind a capital", "A1234", rows({104, 33, 99, 12, 34, 95, 106}), "A1234"},
        {"control character among capitals", "A" + asc(9) + "B", rows({103, 33, 73, 34, 75, 106}), "AB"},
        {"one control character shifted", "ab" + asc(9) + "cd", rows({104, 65, 66, 98, 73, 67, 68, 85, 106}), "abcd"},
        {"leading FNC1, then digits", "\\<FNC1>0112345678901231",
         rows({104, 102, 99, 1, 12, 34, 56, 78, 90, 12, 31, 70, 106}), "0112345678901231"},
        {"odd digit run ends in set B", "12345", rows({105, 12, 34, 100, 21, 54, 106}), "12345"},
        {"three digits at the end pair the first two", "123", rows({105, 12, 100, 19, 65, 106}), "123"},
        {"three digits behind capitals", "AB123", rows({104, 33, 34, 99, 12, 100, 19, 31, 106}), "AB123"},
        {"a lone FNC1", "\\<FNC1>", rows({104, 102, 0, 106}), ""},
        {"GS1 element strings, letters in set B, digits in set C", "\\<FNC1>10ABC123\\<FNC1>3103000123",
         rows({104, 102, 17, 16, 33, 34, 35, 17, 18, 19, 102, 99, 31, 3, 0, 1, 23, 17, 106}), "10ABC1233103000123"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto code = symbol(c.content);
        EXPECT_EQ(code->getBars(), c.bars);
        EXPECT_EQ(code->getText(), c.text);
    }
}

TEST(Code128, PositionCountsSymbolsBehindTheStartAndChecksumWeighsThem)
{
    const auto code = symbol("AB12");
    EXPECT_EQ(code->getPosition(), 4);
    EXPECT_EQ(code->getChecksum(), 104 + 1 * 33 + 2 * 34 + 3 * 17 + 4 * 18);
    EXPECT_EQ(code->reduceChecksum(328), 19);
    EXPECT_EQ(code->reduceChecksum(206), 0);
}

TEST(Code128, ControlEscapesBecomeTokensAndUnknownOnesVanish)
{
    const auto code = symbol("\\<C128_START_B>A\\<FNC1(ignored)>\\<UNKNOWN>\\<FNC2>\\<FNC3>\\<SHIFT>B\\<FNC4>\\<C128_A>"
                             "\\<C128_B>\\<C128_C>");
    const std::vector<std::pair<uint32_t, uint32_t>> expected = {
        {3, 304}, {0, 'A'}, {3, 302}, {3, 297}, {3, 296}, {3, 298}, {0, 'B'}, {3, 301}, {3, 301}, {3, 300}, {3, 299},
    };
    ASSERT_EQ(code->getTokens().size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(code->getTokens()[i].kind, expected[i].first);
        EXPECT_EQ(code->getTokens()[i].value, expected[i].second);
    }
}

TEST(Code128, EscapeNamesAreComparedExactly)
{
    const std::pair<const char*, uint32_t> starts[] = {
        {"C128_START_A", 303}, {"C128_START_B", 304}, {"C128_START_C", 305}};
    for (const auto& [name, value] : starts) {
        SCOPED_TRACE(name);
        KT_FMT::ContentItem item;
        Code128::controlSequence(name, "", item);
        EXPECT_EQ(item, (KT_FMT::ContentItem{KT_FMT::ITEM_CODE128, value}));
    }
    KT_FMT::ContentItem item;
    Code128::controlSequence("fnc1", "", item);
    EXPECT_EQ(item, (KT_FMT::ContentItem{KT_FMT::ITEM_NONE, 0}));
}

TEST(Code128, Fnc4IsAChangeToSetAAndNeverAFunction)
{
    const auto viaFnc4 = symbol("\\<C128_START_B>a\\<FNC4>" + asc(9));
    EXPECT_EQ(viaFnc4->getBars(), rows({104, 65, 101, 73, 75, 106}));
    EXPECT_EQ(symbol("\\<C128_START_B>a\\<C128_A>" + asc(9))->getBars(), viaFnc4->getBars());
}

TEST(Code128, AutomaticModeRefusesEveryControlButFnc1)
{
    const char* const controls[] = {"FNC2", "FNC3", "SHIFT", "FNC4", "C128_A", "C128_B", "C128_C",
                                    "C128_START_A", "C128_START_B", "C128_START_C"};
    for (const char* control : controls) {
        SCOPED_TRACE(control);
        const std::string escape = std::string("\\<") + control + ">";
        expectFailure<KT_ERROR::illegal_content>(
            [&] { symbol("A" + escape + "B"); },
            "EAN-128: control symbol different from  FNC1 found in auto-encoding mode");
        EXPECT_NO_THROW(symbol("\\<C128_START_B>A" + escape + "B"));
    }
    expectFailure<KT_ERROR::illegal_content>(
        [] { symbol("A" + asc(200)); }, "EAN-128: control symbol different from  FNC1 found in auto-encoding mode");
}

TEST(Code128, ExplicitStartUnderAutoSelectTakesTheControlsAsGiven)
{
    EXPECT_EQ(symbol("\\<C128_START_C>1234")->getBars(), rows({105, 12, 34, 82, 106}));
    EXPECT_EQ(symbol("\\<C128_START_A>A\\<C128_B>a\\<C128_C>12")->getBars(),
              rows({103, 33, 100, 65, 99, 12, (103 + 1 * 33 + 2 * 100 + 3 * 65 + 4 * 99 + 5 * 12) % 103, 106}));
    // SHIFT is emitted as it stands and changes nothing: the next character stays in set B.
    EXPECT_EQ(symbol("\\<C128_START_B>\\<SHIFT>a")->getBars(), rows({104, 98, 65, (104 + 98 + 130) % 103, 106}));
}

TEST(Code128, ControlRuleRefusesSetChangesUnderAFixedSetAndFunctionsInSetC)
{
    struct Case {
        std::string content;
        int32_t encoding;
        const char* message;
    };
    const Case cases[] = {
        {"A\\<C128_A>B", SET_B, "barcode 128 encoding error: <CODE_A> and coding set is not AUTO_SELECT"},
        {"A\\<FNC4>B", SET_A, "barcode 128 encoding error: <CODE_A> and coding set is not AUTO_SELECT"},
        {"A\\<C128_B>B", SET_A, "barcode 128 encoding error: <CODE_B> and coding set is not AUTO_SELECT"},
        {"A\\<C128_C>12", SET_B, "barcode 128 encoding error: <CODE_C> and coding set is not AUTO_SELECT"},
        {"12\\<FNC2>", SET_C, "barcode 128 encoding error: <FNC2> in set C"},
        {"12\\<FNC3>", SET_C, "barcode 128 encoding error: <FNC3> in set C"},
        {"12\\<SHIFT>", SET_C, "barcode 128 encoding error: <SHIFT> in set C"},
        {"\\<C128_START_C>12\\<FNC2>", AUTO, "barcode 128 encoding error: <FNC2> in set C"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.content);
        expectFailure<KT_ERROR::illegal_content>([&] { symbol(c.content, c.encoding); }, c.message);
    }
}

TEST(Code128, FunctionsOutsideSetCAndFnc1EverywhereAreEmitted)
{
    EXPECT_EQ(symbol("A\\<FNC2>\\<FNC3>\\<SHIFT>", SET_A)->getBars(),
              rows({103, 33, 97, 96, 98, (103 + 33 + 194 + 288 + 392) % 103, 106}));
    EXPECT_EQ(symbol("\\<FNC1>12", SET_C)->getBars(), rows({105, 102, 12, (105 + 102 + 24) % 103, 106}));
}

TEST(Code128, DataRuleRefusesCharactersOutsideTheSetAndAnUnknownSet)
{
    expectFailure<KT_ERROR::illegal_content>([] { symbol("a", SET_A); }, "barcode 128: set A encoding error");
    expectFailure<KT_ERROR::illegal_content>([] { symbol(asc(9), SET_B); }, "barcode 128: set B encoding error");
    expectFailure<KT_ERROR::illegal_content>([] { symbol("A", -1); }, "barcode 128: encoding set not defined");
}

TEST(Code128, EncodingTypeFourOrAboveIsRefusedBeforeTheContentIsRead)
{
    expectFailure<KT_ERROR::illegal_content>([] { symbol("\\x", 4); }, "barcode 128: invalid encoding type");
    expectFailure<KT_ERROR::illegal_content>([] { symbol("A", 9); }, "barcode 128: invalid encoding type");
    EXPECT_NO_THROW(symbol("12", 3));
}

TEST(Code128, NoTokensIsNoData)
{
    for (const char* content : {"", "\\<UNKNOWN>", "\\<C128_D>\\<fnc1>"}) {
        SCOPED_TRACE(content);
        expectFailure<KT_ERROR::bad_escape_sequence>([&] { symbol(content); }, "code 128: no data ");
    }
}

TEST(Code128, BadContentEscapesFailInTheReader)
{
    expectFailure<KT_ERROR::bad_content_sequence>(
        [] { symbol("A\\x"); }, "illegal content escape sequence, expected '\\' or '<' but got 'x'");
}

TEST(Code128, TheCharacterCheckNeverFiresSoHighBytesPassAndAreSkipped)
{
    for (int byte = 128; byte < 256; ++byte) {
        SCOPED_TRACE(byte);
        EXPECT_EQ(symbol("A" + asc(byte) + "B", SET_B)->getBars(), rows({104, 33, 34, 102, 106}));
    }
}

TEST(Code128, Gs1NeedsAStartSymbolBeforeASecondPlaceFnc1)
{
    expectFailure<KT_ERROR::illegal_content>([] { symbol("A\\<FNC1>12"); }, "GS1-128: start symbol not found");
    expectFailure<KT_ERROR::illegal_content>([] { symbol("A\\<FNC1>12", SET_B); }, "GS1-128: start symbol not found");
    EXPECT_EQ(symbol("\\<C128_START_C>\\<FNC1>12")->getBars(), rows({105, 102, 12, 25, 106}));
}

TEST(Code128, Gs1AllowsFortyEightDataCharacters)
{
    const std::string digits48(48, '7');
    EXPECT_NO_THROW(symbol("\\<FNC1>" + digits48));
    EXPECT_NO_THROW(symbol("\\<C128_START_C>\\<FNC1>" + digits48));
    expectFailure<KT_ERROR::illegal_content>([&] { symbol("\\<FNC1>" + digits48 + "7"); },
                                             "EAN-128: maximal user data length exceeded: 49/48");
    expectFailure<KT_ERROR::illegal_content>([&] { symbol("\\<C128_START_B>\\<FNC1>" + digits48 + "\\<FNC1>A"); },
                                             "EAN-128: maximal user data length exceeded: 49/48");
    // Without FNC1 in front there is no limit.
    EXPECT_NO_THROW(symbol(std::string(60, '7')));
}

TEST(Code128, OneTokenIsNeverGs1ByASecondToken)
{
    EXPECT_EQ(symbol("A")->getBars(), rows({104, 33, 34, 106}));
    EXPECT_EQ(symbol("\\<FNC1>", SET_B)->getBars(), rows({104, 102, 0, 106}));
}

TEST(Code128, Fnc1AtTheEndOfADigitRunKeepsSetCAndLosesTheLettersInPairs)
{
    const auto lost = symbol("1234\\<FNC1>AB");
    EXPECT_EQ(lost->getBars(), rows({105, 12, 34, 102, 79, 106}));
    EXPECT_EQ(lost->getText(), "1234");
    const auto numeric = symbol("1234\\<FNC1>5678");
    EXPECT_EQ(numeric->getBars(), rows({105, 12, 34, 102, 56, 78, (105 + 12 + 68 + 306 + 224 + 390) % 103, 106}));
    EXPECT_EQ(numeric->getText(), "12345678");
}

TEST(Code128, ALetterFBeforeADigitRunPullsTheRunToTheFrontAndKeepsSetB)
{
    const auto code = symbol("f1234");
    EXPECT_EQ(code->getBars(), rows({104, 70, 17, 18, 19, 20, 26, 106}));
    EXPECT_EQ(code->getText(), "f1234");
}

TEST(Code128, ALetterFBehindFourDigitsJoinsTheRunAndIsLost)
{
    const auto code = symbol("1234f");
    EXPECT_EQ(code->getBars(), rows({105, 12, 34, 82, 106}));
    EXPECT_EQ(code->getText(), "1234");
}

TEST(Code128, ALoneControlCharacterBetweenSingleLowerCaseOnesShiftsTwice)
{
    // The way back from the first SHIFT is a second SHIFT, not a silent return.
    const auto code = symbol(asc(9) + "a" + asc(9) + "bb");
    EXPECT_EQ(code->getBars(), rows({103, 73, 98, 65, 98, 73, 66, 66, 19, 106}));
    EXPECT_EQ(code->getText(), "abb");
}

TEST(Code128, FixedSetCDropsPairsWithANonDigitWithoutAWord)
{
    const auto code = symbol("12AB3X4", SET_C);
    EXPECT_EQ(code->getBars(), rows({105, 12, 14, 106}));
    EXPECT_EQ(code->getText(), "12");
    EXPECT_LT(code->getBars().size(), symbol("1234", SET_C)->getBars().size());
}

TEST(Code128, FixedSetCLosesALastDigitWithoutPartner)
{
    const auto code = symbol("123", SET_C);
    EXPECT_EQ(code->getBars(), rows({105, 12, 14, 106}));
    EXPECT_EQ(code->getText(), "12");
}

TEST(Code128, SetCPairsAStartTokenByItsLowByte)
{
    // C128_START_C is 305, whose low byte is the digit 1.
    const auto code = symbol("1\\<C128_START_C>", SET_C);
    EXPECT_EQ(code->getBars(), rows({105, 11, 13, 106}));
    EXPECT_EQ(code->getText(), "11");
}

TEST(Code128, DataBeginningWithGHOrIUnderAFixedSetGetsNoStartSymbol)
{
    for (const char* data : {"gh", "hi", "ig"}) {
        SCOPED_TRACE(data);
        const int first = data[0] - 32, second = data[1] - 32;
        EXPECT_EQ(symbol(data, SET_B)->getBars(), rows({first, second, (first + 2 * second) % 103, 106}));
    }
    EXPECT_EQ(symbol("jh", SET_B)->getBars(), rows({104, 74, 72, (104 + 74 + 144) % 103, 106}));
}

TEST(Code128, AStartTokenUnderAFixedSetIsASecondStartThatResetsTheChecksum)
{
    const auto code = symbol("\\<C128_START_A>AB", SET_B);
    EXPECT_EQ(code->getBars(), rows({104, 103, 33, 34, 101, 106}));
    EXPECT_EQ(code->getChecksum(), 103 + 33 + 2 * 34);
}

TEST(Code128, ContentLongerThanTheRunPositionsStillEncodesEveryCharacter)
{
    const std::string content = std::string(70000, 'A') + "ab";
    EXPECT_EQ(symbol(content)->getText(), content);
}

TEST(Code128, AWeightedSumPast32BitsStillGivesTheCheckSymbolOfTheExactSum)
{
    const std::string bars = symbol(std::string(20000, 'A'))->getBars();
    // Read the symbol values back from the bars, and weigh them as a reader does, in 64 bits.
    std::vector<int64_t> values;
    for (size_t at = 0; at + 7 < bars.size(); at += 6)
        values.push_back(std::find(published, published + 106, bars.substr(at, 6)) - published);
    ASSERT_EQ(values.size(), 20002u);
    int64_t sum = values.front();
    for (size_t i = 1; i + 1 < values.size(); ++i)
        sum += static_cast<int64_t>(i) * values[i];
    EXPECT_GT(sum, int64_t{INT32_MAX});
    EXPECT_EQ(values.back(), sum % 103);
}

TEST(Code128, TheCheckFlagIsNeverLookedAt)
{
    Code128 with("AB12", 0, 0, 1, 100, 0, true, false, 0, AUTO);
    Code128 without("AB12", 0, 0, 1, 100, 0, false, false, 0, AUTO);
    EXPECT_EQ(with.getBitString(), without.getBitString());
}

TEST(Code128, QuietZonesAreTenModulesOrThirtyDotsAndOnlyReversedSymbolsCarryThem)
{
    const struct {
        int32_t module;
        int32_t zone;
    } cases[] = {{1, 30}, {2, 30}, {3, 30}, {4, 40}, {6, 60}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.module);
        const auto plain = symbol("AB12", AUTO, 0, c.module);
        const auto reversed = symbol("AB12", AUTO, 1, c.module);
        EXPECT_EQ(plain->getQuietLeft(), 0);
        EXPECT_EQ(plain->getQuietRight(), 0);
        EXPECT_EQ(reversed->getQuietLeft(), c.zone);
        EXPECT_EQ(reversed->getQuietRight(), c.zone);
        EXPECT_EQ(plain->getBitString().size(), static_cast<size_t>(79 * c.module));
        EXPECT_EQ(reversed->getBitString(),
                  std::string(c.zone, '0') + plain->getBitString() + std::string(c.zone, '0'));
        EXPECT_EQ(plain->quietZone(0), c.zone);
        EXPECT_EQ(plain->quietZone(1), c.zone);
        EXPECT_EQ(plain->quietZone(2), 0);
        EXPECT_EQ(plain->quietZone(-1), 0);
    }
}

TEST(Code128, WidthsAreMultiplesOfTheModule)
{
    const auto code = symbol("A", AUTO, 0, 3);
    // Start B 211214: bar 2, space 1, bar 1, space 2, bar 1, space 4 modules of 3 dots.
    EXPECT_EQ(code->getBitString().substr(0, 33), "111111000111000000111000000000000");
}

TEST(Code128, AtOneHundredEightyDegreesTheBitStringIsMirrored)
{
    const auto upright = symbol("AB12", AUTO, 0, 2, 0);
    const auto turned = symbol("AB12", AUTO, 0, 2, 2);
    std::string mirrored = upright->getBitString();
    std::reverse(mirrored.begin(), mirrored.end());
    EXPECT_EQ(turned->getBitString(), mirrored);
    // The start symbol's first bar, two modules wide, now stands at the right end.
    EXPECT_EQ(turned->getBitString().substr(turned->getBitString().size() - 6), "001111");
}

TEST(Code128, SlotsFollowThoseOfTheBase)
{
    // The destructor takes the first two slots of the ABI, the complete and the deleting one.
    const std::ptrdiff_t slots[] = {
        slotOf(&Code128::validate),       slotOf(&Code128::checkDigit), slotOf(&Code128::encode),
        slotOf(&Code128::draw),           slotOf(&Code128::reduceChecksum), slotOf(&Code128::quietZone),
    };
    for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(std::size(slots)); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(slots[i], i + 2);
    }
}

class Code128Drawing : public fonttest::FontFixture {
protected:
    static constexpr int32_t left = 64, top = 64, module = 3, areaHeight = 150;

    Area paint(Image& image, const std::string& content, int32_t quarterTurns, int32_t reversed, bool showText,
               int32_t height = areaHeight)
    {
        Code128 code(content, left, top, module, height, quarterTurns, false, showText, reversed, AUTO);
        Area rectangle;
        code.paint(image, rectangle);
        return rectangle;
    }

    // Whether raster row `row` from column `left` on holds exactly the bit string.
    static bool rowIsBars(Image& image, int32_t row, const std::string& bitString)
    {
        for (size_t i = 0; i < bitString.size(); ++i)
            if (image.getPixel(left + static_cast<int32_t>(i), row) != bitString[i] - '0')
                return false;
        return true;
    }

    static bool rowHasInk(Image& image, int32_t row)
    {
        for (int32_t col = 0; col < static_cast<int32_t>(image.getWidth()) / 32; ++col)
            if (image.getLong(row, col) != 0)
                return true;
        return false;
    }
};

TEST_F(Code128Drawing, ScannersReadEveryOrientationReversedOrNotWithTextOnAndOff)
{
    const std::string content = "Code-128 ab12345678";
    for (int32_t quarterTurns = 0; quarterTurns < 4; ++quarterTurns)
        for (int32_t reversed = 0; reversed < 2; ++reversed)
            for (const bool showText : {false, true}) {
                SCOPED_TRACE(testing::Message() << "turns " << quarterTurns << " reversed " << reversed << " text "
                                                << showText);
                Image image(2560, 1000);
                const Area covered = paint(image, content, quarterTurns, reversed, showText);
                // The readers look for dark bars: a reversed symbol is read as its negative, whose paper
                // around the bars is the symbol's own quiet zone.
                if (reversed == 1)
                    image.rectangle(covered.left, covered.top, covered.right - covered.left + 1,
                                    covered.bottom - covered.top + 1, 2);
                EXPECT_EQ(scantest::scanInk(image, scantest::zbar), content);
                EXPECT_EQ(scantest::scanInk(image, zxingCode128), content);
            }
}

TEST_F(Code128Drawing, ScannersReadEveryPrintableCharacterOfSetB)
{
    std::string printable;
    for (char c = 32; c < 127; ++c)
        printable += c;
    std::string content;
    for (const char c : printable)
        content += c == '\\' ? std::string("\\\\") : std::string(1, c);
    Image image(2560, 400);
    Code128 code(content, 64, 64, 2, 150, 0, false, false, 0, SET_B);
    Area rectangle;
    code.paint(image, rectangle);
    EXPECT_EQ(scantest::scanInk(image, scantest::zbar), printable);
    EXPECT_EQ(scantest::scanInk(image, zxingCode128), printable);
}

TEST_F(Code128Drawing, ScannersReadEveryDigitPairOfSetC)
{
    std::string digits;
    for (int pair = 0; pair < 100; ++pair)
        digits += std::string{static_cast<char>('0' + pair / 10), static_cast<char>('0' + pair % 10)};
    Image image(2560, 400);
    Code128 code(digits, 64, 64, 2, 150, 0, false, true, 0, AUTO);
    Area rectangle;
    code.paint(image, rectangle);
    EXPECT_EQ(scantest::scanInk(image, scantest::zbar), digits);
    EXPECT_EQ(scantest::scanInk(image, zxingCode128), digits);
}

TEST_F(Code128Drawing, ScannersReadControlCharactersOfSetA)
{
    std::string bytes, content;
    for (int byte = 1; byte < 32; ++byte) {
        bytes += static_cast<char>(byte);
        content += asc(byte);
    }
    bytes += "AZ";
    content += "AZ";
    Image image(2560, 400);
    Code128 code(content, 64, 64, 2, 150, 0, false, true, 0, SET_A);
    Area rectangle;
    code.paint(image, rectangle);
    EXPECT_EQ(scantest::scanInk(image, zxingCode128), bytes);
    EXPECT_EQ(scantest::scanInk(image, scantest::zbar), bytes);
}

TEST_F(Code128Drawing, ScannersReadTheShiftedControlCharacter)
{
    Image image(2560, 1000);
    paint(image, "ab" + asc(9) + "cd", 0, 0, true);
    EXPECT_EQ(scantest::scanInk(image, scantest::zbar), "ab\tcd");
    EXPECT_EQ(scantest::scanInk(image, zxingCode128), "ab\tcd");
}

TEST_F(Code128Drawing, ScannersReadALeadingFnc1AsGs1128)
{
    Image image(2560, 1000);
    paint(image, "\\<FNC1>10ABC123\\<FNC1>3103000123", 0, 0, true);
    EXPECT_EQ(scantest::scanInk(image, zxingCode128), "10ABC123\x1D" "3103000123");
    const std::string report = scantest::scanInk(
        image, [](const std::string& path) { return scantest::runTool("ZXingReader", "-format Code128 '" + path + "'"); });
    EXPECT_NE(report.find("Identifier: ]C1\n"), std::string::npos) << report;
    EXPECT_NE(report.find("Content:    GS1\n"), std::string::npos) << report;
    EXPECT_EQ(scantest::scanInk(image, scantest::zbar), "10ABC123\x1D" "3103000123");
}

TEST_F(Code128Drawing, CoveredAreaIsTheSymbolArea)
{
    Image image(2560, 1000);
    const int32_t length = 79 * module;
    const Area upright = paint(image, "AB12", 0, 0, true);
    EXPECT_EQ(upright.left, left);
    EXPECT_EQ(upright.top, top);
    EXPECT_EQ(upright.right, left + length - 1);
    EXPECT_EQ(upright.bottom, top + areaHeight - 1);
    const Area sideways = paint(image, "AB12", 1, 0, true);
    EXPECT_EQ(sideways.right, left + areaHeight - 1);
    EXPECT_EQ(sideways.bottom, top + length - 1);
}

TEST_F(Code128Drawing, AtZeroDegreesBarsStandAboveTheText)
{
    Image image(2560, 1000);
    paint(image, "AB12", 0, 0, true);
    const std::string bitString = Code128("AB12", left, top, module, areaHeight, 0, false, true, 0, AUTO).getBitString();
    int32_t barRows = 0;
    while (rowIsBars(image, top + barRows, bitString))
        ++barRows;
    EXPECT_GE(barRows, 12);
    EXPECT_LT(barRows, areaHeight);
    bool textBelow = false;
    for (int32_t row = top + barRows; row < top + areaHeight; ++row)
        textBelow = textBelow || rowHasInk(image, row);
    EXPECT_TRUE(textBelow);
    EXPECT_FALSE(rowIsBars(image, top + areaHeight - 1, bitString));
}

TEST_F(Code128Drawing, AtOneHundredEightyDegreesBarsStandBelowTheTurnedText)
{
    Image image(2560, 1000);
    paint(image, "AB12", 2, 0, true);
    const std::string bitString = Code128("AB12", left, top, module, areaHeight, 2, false, true, 0, AUTO).getBitString();
    const int32_t bottom = top + areaHeight - 1;
    int32_t barRows = 0;
    while (rowIsBars(image, bottom - barRows, bitString))
        ++barRows;
    EXPECT_GE(barRows, 12);
    EXPECT_LT(barRows, areaHeight);
    bool textAbove = false;
    for (int32_t row = top; row <= bottom - barRows; ++row)
        textAbove = textAbove || rowHasInk(image, row);
    EXPECT_TRUE(textAbove);
    EXPECT_FALSE(rowIsBars(image, top, bitString));
    EXPECT_FALSE(rowHasInk(image, bottom + 1));
}

TEST_F(Code128Drawing, BarsWithoutTextNeedTwelveDots)
{
    Image image(2560, 1000);
    expectFailure<KT_ERROR::render_time_error>([&] { paint(image, "AB12", 0, 0, false, 11); },
                                               "Code 128: bar height is too small");
    paint(image, "AB12", 0, 0, false, 12);
    EXPECT_EQ(image.getFirstUsedRow(), top);
    EXPECT_EQ(image.getLastUsedRow(), top + 11);
}

TEST_F(Code128Drawing, BarsUnderTextNeedTwelveDotsAfterTextAndOneModule)
{
    // The lowest area that still takes the text: bars of exactly 12 dots.
    int32_t height = 12;
    while (throwsText([&] {
               Image probe(2560, 1000);
               paint(probe, "AB12", 0, 0, true, height);
           }) != "nothing thrown")
        ++height;
    ASSERT_GT(height, 12 + module);
    Image image(2560, 1000);
    expectFailure<KT_ERROR::render_time_error>([&] { paint(image, "AB12", 0, 0, true, height - 1); },
                                               "Code 128: bar height is too small");
    paint(image, "AB12", 0, 0, true, height);
    const std::string bitString = Code128("AB12", left, top, module, height, 0, false, true, 0, AUTO).getBitString();
    for (int32_t row = top; row < top + 12; ++row)
        EXPECT_TRUE(rowIsBars(image, row, bitString)) << row;
    EXPECT_FALSE(rowIsBars(image, top + 12, bitString));
}

TEST_F(Code128Drawing, AnEmptyLineOfLostPairsLeavesBarsTooLowAtAnyHeight)
{
    // Set C loses both pairs, so the line is empty and measures as the empty area: its height wraps the bar
    // height far below 12 dots, however tall the symbol.
    for (int32_t height : {13, 100, 900}) {
        SCOPED_TRACE(height);
        Image image(2560, 1000);
        expectFailure<KT_ERROR::render_time_error>(
            [&] {
                Area area{};
                Code128("ABCD", left, top, module, height, 0, false, true, 0, SET_C).paint(image, area);
            },
            "Code 128: bar height is too small");
        EXPECT_EQ(image.getLastUsedRow(), 0) << "nothing painted";
    }
}

TEST_F(Code128Drawing, ABackslashInTheLineIsReadAsAnEscapeByTheFont)
{
    Image image(2560, 1000);
    expectFailure<KT_ERROR::bad_content_sequence>([&] { paint(image, "a\\\\b", 0, 0, true); },
                                                  "illegal content escape sequence, expected '\\' or '<' but got 'b'");
    EXPECT_NO_THROW(paint(image, "a\\\\b", 0, 0, false));
}

TEST_F(Code128Drawing, ASymbolEndingAtTheRightEdgeFailsOffTheWordGrid)
{
    // "AB" in set B is 57 modules: at one dot a module it fits the last 57 columns of a 320-dot raster.
    const auto paintAt = [](Image& image, int32_t x) {
        Code128 code("AB", x, 0, 1, 20, 0, false, false, 0, SET_B);
        Area rectangle;
        code.paint(image, rectangle);
    };
    Image aligned(320, 40);
    EXPECT_NO_THROW(paintAt(aligned, 256));
    Image unaligned(320, 40);
    expectFailure<KT_ERROR::drawable_off_format>([&] { paintAt(unaligned, 263); },
                                                 "trying to draw off format at (320/0)");
    // Rows already or-ed in stay: the first word of the first row is there.
    EXPECT_NE(unaligned.getLong(0, 8), 0u);
}
