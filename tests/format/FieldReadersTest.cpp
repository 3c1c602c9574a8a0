#include "format/FieldReaders.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ios>
#include <sstream>

#include "autocode/AC_FixedString.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_FMT;

namespace {

// The parser's stream: it raises at the end of input.
struct RaisingStream : std::istringstream {
    explicit RaisingStream(const std::string& text) : std::istringstream(text)
    {
        exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);
    }
};

std::string rest(std::istream& stream)
{
    stream.exceptions(std::ios::goodbit);
    std::ostringstream out;
    out << stream.rdbuf();
    return out.str();
}

// The stream library's own failure, which is no kt_exception.
template <class Action>
void expectStreamFailure(Action&& action)
{
    EXPECT_THROW(action(), std::ios_base::failure);
}

class FieldReadersFormat : public testing::Test {
protected:
    Image image{64, 8};
    KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST(FieldReaders, ReadNumberKeepsItsLooseSignTest)
{
    const struct {
        const char* text;
        uint32_t width;
        int32_t expected;
    } cases[] = {
        {"00012", 5, 12},   {"-0012", 5, -12},  {"+0012", 5, 12},    {"00000", 5, 0},
        {"00-12", 5, -12},  // a sign may stand anywhere
        {"1-234", 5, 1},    {"-12X4", 5, -12},  // once a sign was seen, any byte passes
        {"-----", 1, 0},    {"+", 1, 0},        {"-+", 1, 0},        {"12345", 5, 12345},
        {"7", 1, 7},        {"0", 1, 0},        {"-001", 4, -1},     {"2147483647", 10, 2147483647},
        {"-2147483648", 11, -2147483647 - 1},   {"0-", 2, 0},        {"-0 12", 5, 0},
        {"99999999999", 11, 1215752191},       // only the low 32 bits are kept
        {"", 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        RaisingStream in(std::string(c.text) + "rest");
        EXPECT_EQ(readNumber(in, c.width, true), c.expected);
        EXPECT_EQ(rest(in), std::string(c.text).substr(c.width) + "rest");
    }
}

TEST(FieldReaders, ReadNumberRejectsBytes)
{
    const struct {
        const char* text;
        bool signAllowed;
        const char* byte;
    } cases[] = {
        {"+-012", true, "-"},  {"--012", true, "-"}, {"12X45", true, "X"}, {"12X45", false, "X"},
        {"  123", true, " "},  {"  123", false, " "}, {"-0012", false, "-"}, {"+0012", false, "+"},
        {"00-12", false, "-"}, {"1.500", true, "."}, {"-12-4", true, "-"}, {"\v0000", true, "\v"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        RaisingStream in(c.text);
        expectFailure<KT_ERROR::parse_time_error>(
            [&] { readNumber(in, 5, c.signAllowed); },
            std::string("non-digit or too many sign characters read while parsing number: ") + c.byte);
        EXPECT_EQ(rest(in), "");  // what was read stays read
    }
}

TEST(FieldReaders, ReadNumberRefusesWidthsAboveOneHundred)
{
    RaisingStream in(std::string(200, '1'));
    expectFailure<KT_ERROR::kt_exception>([&] { readNumber(in, 101, true); }, "can't parse that long of a number");
    EXPECT_EQ(rest(in).size(), 200u);
}

TEST(FieldReaders, ReadNumberReadsAHundredBytes)
{
    RaisingStream in(std::string(98, '0') + "42x");
    EXPECT_EQ(readNumber(in, 100, true), 42);
    EXPECT_EQ(rest(in), "x");
}

TEST(FieldReaders, ReadNumberShortReadFails)
{
    std::istringstream plain("12");
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { readNumber(plain, 5, true); },
                                                 "I/O error while parsing number");
    RaisingStream raising("12");
    expectStreamFailure([&] { readNumber(raising, 5, true); });
}

TEST(FieldReaders, ReadFlag)
{
    RaisingStream in("01x");
    EXPECT_FALSE(readFlag(in));
    EXPECT_TRUE(readFlag(in));
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { readFlag(in); }, "expected '0' or '1' but got: 'x'");
    for (const char* text : {"2", " ", "L"}) {
        SCOPED_TRACE(text);
        RaisingStream bad(text);
        expectFailure<KT_ERROR::bad_escape_sequence>([&] { readFlag(bad); },
                                                     std::string("expected '0' or '1' but got: '") + text + "'");
    }
    RaisingStream empty("");
    expectStreamFailure([&] { readFlag(empty); });
}

TEST(FieldReaders, ReadOrientation)
{
    RaisingStream in("0123");
    for (int32_t expected = 0; expected < 4; ++expected)
        EXPECT_EQ(readOrientation(in), expected);
    for (const char* text : {"4", "/", "9", "a"}) {
        SCOPED_TRACE(text);
        RaisingStream bad(std::string(text) + "0");
        expectFailure<KT_ERROR::bad_escape_sequence>(
            [&] { readOrientation(bad); }, std::string("error parsing orientation, expected 0, 1, 2 or 3 got: ") + text);
        EXPECT_EQ(rest(bad), "0");
    }
}

TEST(FieldReaders, ReadDelimitedTakesTheBytesUpToTheDelimiter)
{
    const struct {
        std::string text;
        std::string expected;
        std::string rest;
    } cases[] = {
        {"\v", "", ""},
        {"\vabc\v", "", "abc\v"},
        {"abc\vdef", "abc", "def"},
        {"a\nb\x1b\r\\\vx", "a\nb\x1b\r\\", "x"},  // newlines and ESC are ordinary content
        {std::string("a\0b\v", 4), std::string("a\0b", 3), ""},
        {std::string(5000, 'y') + "\v", std::string(5000, 'y'), ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        RaisingStream in(c.text);
        EXPECT_EQ(readDelimited(in, VT), c.expected);
        EXPECT_EQ(rest(in), c.rest);
    }
}

TEST(FieldReaders, ReadDelimitedTakesAnyDelimiter)
{
    RaisingStream in("12\x03" "34");
    EXPECT_EQ(readDelimited(in, '\x03'), "12");
    EXPECT_EQ(rest(in), "34");
}

TEST(FieldReaders, ReadDelimitedAtTheEndOfInput)
{
    for (const char* text : {"abc", ""}) {
        SCOPED_TRACE(text);
        std::istringstream plain(text);
        expectFailure<KT_ERROR::bad_escape_sequence>([&] { readDelimited(plain, VT); },
                                                     std::string("found end of input while parsing ") + text);
        RaisingStream raising(text);
        expectStreamFailure([&] { readDelimited(raising, VT); });
    }
}

TEST(FieldReaders, ReadDelimitedOnAFailedStreamDropsOneByteAndReturnsNothing)
{
    std::istringstream plain("ab\vc");
    plain.setstate(std::ios::failbit);
    EXPECT_EQ(readDelimited(plain, VT), "");
    EXPECT_TRUE(plain.good());
    EXPECT_EQ(rest(plain), "b\vc");
}

TEST_F(FieldReadersFormat, ReferenceFieldReturnsTheIdAndCreatesNothing)
{
    RaisingStream in("VXGTIN\vrest");
    EXPECT_EQ(readContentField(in, format), "XGTIN");
    EXPECT_EQ(rest(in), "rest");
    EXPECT_EQ(format.getElements().size(), 0u);
    // The element need not exist: the failure comes with the lookup.
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { format.getElements().getElement("XGTIN"); },
                                                 "Element id not found: XGTIN");
}

TEST_F(FieldReadersFormat, EmptyReferenceFailsOnlyWhenLookedUp)
{
    RaisingStream in("V\v");
    EXPECT_EQ(readContentField(in, format), "");
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { format.getElements().getElement(""); },
                                                 "Element id not found: ");
}

TEST_F(FieldReadersFormat, FixedFieldMakesAFixedStringUnderAGeneratedId)
{
    RaisingStream in("Fa\\<FNC1>b\v" "F\vrest");
    EXPECT_EQ(readContentField(in, format), "&0");
    EXPECT_EQ(readContentField(in, format), "&1");
    EXPECT_EQ(rest(in), "rest");
    const KT_AC::AC_ElementCollection& elements = format.getElements();
    ASSERT_EQ(elements.size(), 2u);
    EXPECT_EQ(elements.getElement("&0").getResult(), "a\\<FNC1>b");
    EXPECT_EQ(elements.getElement("&1").getResult(), "");
    EXPECT_NE(dynamic_cast<const KT_AC::AC_FixedString*>(&elements.getElement("&1")), nullptr);
    EXPECT_FALSE(elements.getElement("&1").isVariable());
}

TEST_F(FieldReadersFormat, EqualFixedTextsMakeTwoElements)
{
    RaisingStream in("F01\vF01\v");
    EXPECT_EQ(readContentField(in, format), "&0");
    EXPECT_EQ(readContentField(in, format), "&1");
    EXPECT_EQ(format.getElements().size(), 2u);
    EXPECT_EQ(format.getElements().getElement("&0").getResult(), "01");
    EXPECT_EQ(format.getElements().getElement("&1").getResult(), "01");
}

TEST_F(FieldReadersFormat, ContentFieldOfAnotherKindFails)
{
    for (const char* text : {"X", "f", "v", "I", "\v"}) {
        SCOPED_TRACE(text);
        RaisingStream in(std::string(text) + "abc\v");
        expectFailure<KT_ERROR::bad_escape_sequence>(
            [&] { readContentField(in, format); },
            std::string("expected content field starting with 'F' or 'V' got: '") + text + "'");
        EXPECT_EQ(rest(in), "abc\v");
    }
    EXPECT_EQ(format.getElements().size(), 0u);
}

TEST_F(FieldReadersFormat, UnfinishedFixedFieldCreatesNothing)
{
    std::istringstream plain("Fabc");
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { readContentField(plain, format); },
                                                 "found end of input while parsing abc");
    EXPECT_EQ(format.getElements().size(), 0u);
    EXPECT_EQ(format.getElements().generateId(), "&0");
}

TEST(FieldReaders, ReadPaddingIsAlwaysSixBytes)
{
    const struct {
        std::string text;
        KT_AC::Padding::Alignment alignment;
        char fill;
        uint32_t width;
    } cases[] = {
        {"0 0000", KT_AC::Padding::ALIGN_NONE, ' ', 0},
        {"R*0012", KT_AC::Padding::ALIGN_RIGHT, '*', 12},
        {"L-0000", KT_AC::Padding::ALIGN_LEFT, '-', 0},
        {std::string("0\0" "0000", 6), KT_AC::Padding::ALIGN_NONE, '\0', 0},
        {"L00008", KT_AC::Padding::ALIGN_LEFT, '0', 8},
        {"0\v9999", KT_AC::Padding::ALIGN_NONE, '\v', 9999},
        {"L0+010", KT_AC::Padding::ALIGN_LEFT, '0', 10},
        {"L0-001", KT_AC::Padding::ALIGN_LEFT, '0', 0},  // a negative width pads nothing
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        RaisingStream in(c.text + "x");
        const KT_AC::Padding padding = readPadding(in);
        EXPECT_EQ(padding.alignment, c.alignment);
        EXPECT_EQ(padding.padCharacter, c.fill);
        EXPECT_EQ(padding.width, c.width);
        EXPECT_EQ(rest(in), "x");
    }
}

TEST(FieldReaders, ReadPaddingRefusesAnUnknownAlignment)
{
    for (const char* text : {"l", "C", "1", " "}) {
        SCOPED_TRACE(text);
        RaisingStream in(std::string(text) + " 0000");
        expectFailure<KT_ERROR::bad_escape_sequence>(
            [&] { readPadding(in); },
            std::string("malformed alignment while parsing padding; expected '0', 'L' or 'R' but got '") + text + "'");
        EXPECT_EQ(rest(in), " 0000");
    }
}

TEST(FieldReaders, ReadPaddingPassesOnTheNumberFailure)
{
    RaisingStream in("L 12X4");
    expectFailure<KT_ERROR::parse_time_error>(
        [&] { readPadding(in); }, "non-digit or too many sign characters read while parsing number: X");
}

TEST(FieldReaders, TextToFloat)
{
    const struct {
        const char* text;
        float expected;
    } cases[] = {
        {"", 0},     {"0", 0},       {"0.00", 0},  {"000", 0},    {".", 0},     {".0", 0},
        {"0.", 0},   {"1.5", 1.5f},  {"12abc", 12}, {"-2.25", -2.25f}, {"  3", 3}, {"1e2", 100},
        {"0.5", 0.5f}, {"00.10", 0.1f},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_FLOAT_EQ(textToFloat(c.text), c.expected);
    }
    EXPECT_TRUE(std::isnan(textToFloat("nan")));
}

TEST(FieldReaders, TextToFloatFailsOnAZeroTheTextCannotJustify)
{
    for (const char* text : {"abc", "0.0.0", "..", "-0", "0x", " 0", "0,0", "+0"}) {
        SCOPED_TRACE(text);
        expectFailure<KT_ERROR::internal_autocode_error>([&] { textToFloat(text); },
                                                          std::string("converting ") + text + " into float failed");
    }
}

TEST(FieldReaders, FloatToTextPrintsSixDecimals)
{
    const struct {
        float value;
        const char* expected;
    } cases[] = {
        {0, "0.000000"},
        {1.5f, "1.500000"},
        {-2.25f, "-2.250000"},
        {0.1f, "0.100000"},
        {16777217.0f, "16777216.000000"},
        {3.40282347e38f, "340282346638528859811704183484516925440.000000"},
        {-3.40282347e38f, "-340282346638528859811704183484516925440.000000"},
        {1e-7f, "0.000000"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(floatToText(c.value), c.expected);
    }
}
