#include "format/LegacyConversion.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <sstream>
#include <string>

#include "errors/KT_Error.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"

using KT_FMT::LegacyConversion;

namespace {


// The head of a legacy text record: font 05, x 00127, y 00326, size 06, orientation 00.
const std::string textHead = "050012700326" "06" "00";
// The head of a legacy barcode record up to its bar widths: position 00010, 00020, height 00100, orientation 0.
std::string barcodeHead(const std::string& type) { return type + "0001000020" "00100" "0" "UD"; }

class LegacyConversionTest : public testing::Test {
protected:
    // Converts the record behind ESC and its letter, with the state of one filter.
    std::string convert(char letter, const std::string& body)
    {
        source.str(withControls(body));
        LegacyConversion conversion(source, buffer.data(), static_cast<uint32_t>(buffer.size()), replacementCounter,
                                    variableIds);
        const uint32_t length = letter == 'B' ? conversion.convertBarcode() : conversion.convertText();
        return std::string(buffer.data(), length);
    }

    // What the source still holds behind the record.
    std::string rest() { return std::string(std::istreambuf_iterator<char>(&source), {}); }

    template <class Error>
    void expectConversionFailure(char letter, const std::string& body, const std::string& text)
    {
        expectFailure<Error>([&] { convert(letter, body); }, text);
    }

    std::stringbuf source;
    std::array<char, 1024> buffer{};
    uint32_t replacementCounter = 0;
    std::map<std::string, std::string> variableIds;
};

}  // namespace

TEST_F(LegacyConversionTest, TheWorkedTextConversion)
{
    EXPECT_EQ(convert('T', textHead + "0FAB|"),
              withControls("~VF_rpl_old00|000000000FAB||~#T050012700326" "00" "VF_rpl_old00|06L000"));
    EXPECT_EQ(replacementCounter, 1u);
}

TEST_F(LegacyConversionTest, ABackslashOfAnOldTextIsDoubled)
{
    EXPECT_EQ(convert('T', textHead + "0Fa\\b|"),
              withControls("~VF_rpl_old00|000000000Fa\\\\b||~#T050012700326" "00" "VF_rpl_old00|06L000"));
}

TEST_F(LegacyConversionTest, ACounterInATextDropsThreeBytesBehindItsSuffix)
{
    const std::string numbers = "0000001" "0009999" "0000002" "0000003" "0000004";
    EXPECT_EQ(convert('T', textHead + "0S" + numbers + "*P\\|S|xyz~"),
              withControls("~VC_rpl_old00|S000000001000009999000000002000000003000000004|L*0004P\\\\|S|"
                    "~#T050012700326" "00" "VC_rpl_old00|06L000"));
    EXPECT_EQ(rest(), withControls("~"));
}

TEST_F(LegacyConversionTest, ACounterWidthCountsTheDigitsOfTheLargestNumber)
{
    const struct {
        const char* numbers;
        char type;
        const char* width;
    } cases[] = {
        {"0000000" "0000000" "0000000" "0000000" "0000000", 'R', "0001"},
        {"-999999" "0000010" "0000000" "0000000" "0000000", 'T', "0002"},
        {"0000001" "0000000" "0000000" "0000000" "1234567", 'S', "0007"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.numbers);
        replacementCounter = 0;
        const std::string converted = convert('T', textHead + "0" + c.type + c.numbers + "0||xyz");
        EXPECT_EQ(converted.substr(0, 15), withControls(std::string("~VC_rpl_old00|") + c.type));
        EXPECT_EQ(converted.substr(61, 10), withControls(std::string("L0") + c.width + "||~#"));
    }
}

TEST_F(LegacyConversionTest, ANulPadByteMeansNoPadding)
{
    const std::string numbers(35, '0');
    const std::string converted = convert('T', textHead + "0R" + numbers + std::string(1, '\0') + "||xyz");
    EXPECT_EQ(converted.substr(61, 6), std::string("0\0" "0001", 6));
}

TEST_F(LegacyConversionTest, AVariableInATextKeepsItsPromptAsItStands)
{
    EXPECT_EQ(convert('T', textHead + "0VRibbon\\:|de\\f|"),
              withControls("~VI_rpl_old00|de\\\\f|Ribbon\\:|0000000000||~#T050012700326" "00" "VI_rpl_old00|06L000"));
    EXPECT_EQ(variableIds.at("Ribbon\\:"), "VI_rpl_old00");
}

TEST_F(LegacyConversionTest, EqualPromptsMakeOneVariable)
{
    convert('T', textHead + "0VRibbon:|first|");
    EXPECT_EQ(convert('T', textHead + "0VRibbon:|second|"), withControls("~#T050012700326" "00" "VI_rpl_old00|06L000"));
    EXPECT_EQ(replacementCounter, 2u) << "the second record still uses up an id";
    EXPECT_EQ(convert('B', barcodeHead("00") + "02020202" "dropped!" "0" "VRibbon:|third|"),
              withControls("~#B0000010000200" "0VI_rpl_old00|00100" "02" "00"));
    EXPECT_EQ(convert('T', textHead + "0VOther|x|").substr(0, 14), withControls("~VI_rpl_old03|"));
}

TEST_F(LegacyConversionTest, ABarcodeVariableHasItsLengthAsWidthAndMaximum)
{
    const struct {
        const char* type;
        const char* length;
        const char* parameters;
    } cases[] = {
        {"00", "0007", "00100" "01" "1" "0"}, {"01", "0012", "00100" "01" "1" "0"},
        {"02", "0000", "00100" "0302" "1" "0"}, {"03", "0000", "00100" "0302" "1" "0"},
        {"04", "0000", "00100" "01" "1" "0" "00"}, {"05", "0011", "00100" "01" "1" "0"},
        {"06", "0007", "00100" "01" "1" "0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.type);
        variableIds.clear();
        replacementCounter = 0;
        EXPECT_EQ(convert('B', barcodeHead(c.type) + "03020104" "dropped!" "1" "VCode|123|"),
                  withControls(std::string("~VI_rpl_old00|123|Code|00") + c.length + c.length + "||~#B" + c.type +
                        "0001000020" "0" "0VI_rpl_old00|" + c.parameters));
    }
}

TEST_F(LegacyConversionTest, ABarcodeWithAFixedText)
{
    EXPECT_EQ(convert('B', barcodeHead("00") + "02030104" "dropped!" "1" "F12\\34|~"),
              withControls("~VF_rpl_old00|000000000F12\\\\34||~#B0000010000200" "0VF_rpl_old00|00100" "01" "10"));
    EXPECT_EQ(rest(), withControls("~"));
}

TEST_F(LegacyConversionTest, ACounterInABarcodeDropsTwoBytesBehindItsSuffix)
{
    EXPECT_EQ(convert('B', barcodeHead("01") + "02020202" "dropped!" "0" "S" + std::string(35, '0') + "0pre|suf|xy~"),
              withControls("~VC_rpl_old00|S000000000000000000000000000000000000000000000|L00001pre|suf|"
                    "~#B0100010000200" "0VC_rpl_old00|00100" "02" "00"));
    EXPECT_EQ(rest(), withControls("~"));
}

TEST_F(LegacyConversionTest, BarcodeTypesWithoutAParameterRuleFail)
{
    for (const char* type : {"07", "08", "09", "14", "15", "99"}) {
        SCOPED_TRACE(type);
        expectConversionFailure<KT_ERROR::bad_escape_sequence>(
            'B', barcodeHead(type) + "02020202" "dropped!" "0" "F12|",
            std::string("unknown barcode type: ") + std::to_string(std::atoi(type)));
    }
}

TEST_F(LegacyConversionTest, ABarcodeWithoutUdFails)
{
    expectConversionFailure<KT_ERROR::bad_escape_sequence>('B', "000001000020001000XD02020202",
                                                           "user defined parameters not found");
    EXPECT_EQ(rest(), "02020202");
    expectConversionFailure<KT_ERROR::bad_escape_sequence>('B', "0000010", "user defined parameters not found");
}

TEST_F(LegacyConversionTest, AnUnknownContentTypeFails)
{
    expectConversionFailure<KT_ERROR::bad_escape_sequence>(
        'T', textHead + "0X",
        "error parsing old text escape sequence, type must be 'F', 'V', 'S', 'T' or 'R', got: 'X'");
    expectConversionFailure<KT_ERROR::bad_escape_sequence>(
        'B', barcodeHead("00") + "02020202" "dropped!" "0" "f",
        "error parsing old text escape sequence, type must be 'F', 'V', 'S', 'T' or 'R', got: 'f'");
}

TEST_F(LegacyConversionTest, ATextKindOtherThanZeroOrThreeFails)
{
    for (const std::string kind : {"1", "9", ""}) {
        SCOPED_TRACE(kind);
        expectConversionFailure<KT_ERROR::bad_escape_sequence>('T', textHead + kind,
                                                               "0 or 3 missing in the esc. T  seq.");
    }
}

TEST_F(LegacyConversionTest, AContentTextWithoutVtFails)
{
    const std::string missing = "found end of stream while extracting string (missing 0x0B)";
    expectConversionFailure<KT_ERROR::bad_escape_sequence>('T', textHead + "0FAB", missing);
    expectConversionFailure<KT_ERROR::bad_escape_sequence>('T', textHead + "0VPrompt", missing);
    expectConversionFailure<KT_ERROR::bad_escape_sequence>('T', textHead + "0VPrompt|default", missing);
    const std::string counter = textHead + "0R" + std::string(36, '0');
    expectConversionFailure<KT_ERROR::bad_escape_sequence>('T', counter + "pre", missing);
    expectConversionFailure<KT_ERROR::bad_escape_sequence>('T', counter + "pre|suf", missing);
}

TEST_F(LegacyConversionTest, ADateWithLetterNineHasFixedOffsetsAndNoFormula)
{
    EXPECT_EQ(convert('T', textHead + "30105|9001000000xy~"),
              withControls("~VD_rpl_old00|0105|F001000000~#T050012700326" "00" "VD_rpl_old00|06L000"));
    EXPECT_EQ(rest(), withControls("~"));
}

TEST_F(LegacyConversionTest, ADateOffsetByNumberGoesThroughAFormulaWithAUnit)
{
    const struct {
        char letter;
        const char* groups;
        const char* sum;
        const char* unit;
    } cases[] = {
        {'0', "005002", "7", "0"},  {'1', "010002", "12", "0"}, {'2', "000000", "0", "0"},
        {'3', "002001", "3", "0"},  // deliberate: weeks are written as days, unmultiplied
        {'4', "-05002", "-3", "1"}, {'5', "001001", "2", "1"},  {'6', "020000", "20", "2"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.letter);
        replacementCounter = 0;
        EXPECT_EQ(convert('T', textHead + "301|" + std::string(1, c.letter) + c.groups + "xy"),
                  withControls(std::string("~VF_rpl_old00|00.000000F") + c.sum + "||~VD_rpl_old01|01|VF_rpl_old00|" +
                        c.unit + "~#T050012700326" "00" "VD_rpl_old01|06L000"));
        EXPECT_EQ(replacementCounter, 2u);
    }
}

TEST_F(LegacyConversionTest, LettersBelowZeroWriteNoUnit)
{
    for (const char letter : {'*', '+', ',', '-', '.', '/'}) {
        SCOPED_TRACE(letter);
        replacementCounter = 0;
        EXPECT_EQ(convert('T', textHead + "301|" + std::string(1, letter) + "001001xy"),
                  withControls("~VF_rpl_old00|00.000000F2||~VD_rpl_old01|01|VF_rpl_old00|~#T050012700326" "00"
                        "VD_rpl_old01|06L000"));
    }
}

TEST_F(LegacyConversionTest, OtherOffsetLettersFail)
{
    for (const char letter : {')', '7', '8', ':', 'A'}) {
        SCOPED_TRACE(letter);
        expectConversionFailure<KT_ERROR::bad_escape_sequence>(
            'T', textHead + "301|" + std::string(1, letter) + "001001xy", "wrong offset in the esc. T  seq.");
    }
}

TEST_F(LegacyConversionTest, ADateFormatIsKeptAsItStands)
{
    EXPECT_EQ(convert('T', textHead + "317a\\b|9000000000xy").substr(0, 24), withControls("~VD_rpl_old00|17a\\b|F000"));
}

TEST_F(LegacyConversionTest, FixedFieldsComeOutShortAtTheEndOfTheSource)
{
    EXPECT_EQ(convert('T', textHead + "301|9001"),
              withControls("~VD_rpl_old00|01|F001~#T050012700326" "00" "VD_rpl_old00|06L000"));
}

namespace {

// A source that reports the end a few times before the rest of its bytes arrive.
class StutteringSource : public std::streambuf {
public:
    StutteringSource(std::string head, int gaps, std::string tail)
        : head(std::move(head)), gaps(gaps), tail(std::move(tail))
    {
        setg(this->head.data(), this->head.data(), this->head.data() + this->head.size());
    }

    int endsReported = 0;

protected:
    int_type underflow() override
    {
        if (gptr() == tail.data() + tail.size())
            return traits_type::eof();
        if (endsReported < gaps) {
            ++endsReported;
            return traits_type::eof();
        }
        setg(tail.data(), tail.data(), tail.data() + tail.size());
        return traits_type::to_int_type(*gptr());
    }

private:
    std::string head;
    int gaps;
    std::string tail;
};

}  // namespace

TEST_F(LegacyConversionTest, TheDateFormatIsReadOnPastTheEndOfTheSource)
{
    StutteringSource stuttering(withControls(textHead + "301"), 5, withControls("05|9001000000xy"));
    LegacyConversion conversion(stuttering, buffer.data(), static_cast<uint32_t>(buffer.size()), replacementCounter,
                                variableIds);
    const uint32_t length = conversion.convertText();
    EXPECT_EQ(stuttering.endsReported, 5);
    EXPECT_EQ(std::string(buffer.data(), length),
              withControls("~VD_rpl_old00|0105|F001000000~#T050012700326" "00" "VD_rpl_old00|06L000"));
}

TEST_F(LegacyConversionTest, AConversionOf1024BytesFitsAndOneMoreOverflows)
{
    EXPECT_EQ(convert('T', textHead + "0F" + std::string(962, 'x') + "|").size(), 1024u);
    expectConversionFailure<KT_ERROR::parse_time_error>('T', textHead + "0F" + std::string(963, 'x') + "|",
                                                        "buffer overflow while converting old escape sequence");
}

TEST_F(LegacyConversionTest, AWholeStringMustLeaveAByteToSpare)
{
    // The barcode's parameter text comes last: it may end one byte before the end of the buffer, not at it.
    const std::string head = barcodeHead("00") + "02020202" "dropped!" "0" "F";
    EXPECT_EQ(convert('B', head + std::string(958, 'x') + "|").size(), 1023u);
    expectConversionFailure<KT_ERROR::parse_time_error>('B', head + std::string(959, 'x') + "|",
                                                        "buffer overflow while converting old escape sequence");
}

TEST_F(LegacyConversionTest, MadeUpIdsGrowBeyondTwoDigits)
{
    replacementCounter = 9;
    EXPECT_EQ(convert('T', textHead + "0FA|").substr(0, 14), withControls("~VF_rpl_old09|"));
    replacementCounter = 100;
    EXPECT_EQ(convert('T', textHead + "0FA|").substr(0, 15), withControls("~VF_rpl_old100|"));
    EXPECT_EQ(replacementCounter, 101u);
}
