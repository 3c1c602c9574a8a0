#include "format/EscapeFilterStreamBuf.h"

#include <gtest/gtest.h>

#include <istream>
#include <sstream>
#include <string>

#include "errors/KT_Error.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"

using KT_FMT::EscapeFilterStreamBuf;

namespace {


std::string filtered(const std::string& input)
{
    std::stringbuf source(input);
    EscapeFilterStreamBuf filter(&source);
    return std::string(std::istreambuf_iterator<char>(&filter), {});
}

const std::string textHead = "050012700326" "06" "00";

// A graphic at 0, 0 of 2 bytes by 2 rows, whose raster holds ESC T and 0xFF.
const std::string graphic = withControls("~G00000000000000200002X") + std::string("\x1bT\xff\x1b", 4);

// Present-day records of every kind, as the parser knows them.
const std::string presentDay = withControls("NAME      ~VIname|content|prompt|0 00000000||~VXGTIN|0123|"
                                     "~VFf|000000000F1|+VIname||~VCc|S000000001000000009000000001000000001"
                                     "000000001|0 0000||~VDd|01|F000000000~#T050012700326" "00" "VIname|06L000"
                                     "~#B0000010000200" "0VXGTIN|00100" "02" "00~#I0000000000000100001~L"
                                     "000060001200012001060000000000") +
                                 graphic + withControls("~D00~S160~X07050") + "\xff" + withControls("~Q00000");

}  // namespace

TEST(EscapeFilterStreamBuf, APresentDayFormatPassesByteForByte)
{
    EXPECT_EQ(filtered(presentDay), presentDay);
}

TEST(EscapeFilterStreamBuf, AnEscLeavesTheSourceWithTheByteBehindItAndEscGWithItsHeader)
{
    const struct {
        std::string input;
        size_t read;
        std::streamoff taken;
    } cases[] = {
        {"ab", 1, 1},
        {withControls("~VIx"), 1, 2},
        {withControls("~VIx"), 2, 2},
        {withControls("~VIx"), 3, 3},
        {withControls("~~T"), 1, 2},
        {graphic, 1, 23},
        {graphic, 23, 23},
        {graphic, 24, 24},  // raster bytes go one at a time
        {withControls("~G0000"), 1, 6},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.input << " " << c.read);
        std::stringbuf source(c.input);
        EscapeFilterStreamBuf filter(&source);
        for (size_t i = 0; i < c.read; ++i)
            ASSERT_EQ(filter.sbumpc(), static_cast<unsigned char>(c.input[i]));
        EXPECT_EQ(source.pubseekoff(0, std::ios::cur, std::ios::in), c.taken);
    }
}

TEST(EscapeFilterStreamBuf, AnEscAtTheEndOfTheSourcePassesAlone)
{
    std::stringbuf source(withControls("a~"));
    EscapeFilterStreamBuf filter(&source);
    EXPECT_EQ(filter.sbumpc(), 'a');
    EXPECT_EQ(filter.sbumpc(), 0x1b);
    EXPECT_EQ(filter.sbumpc(), std::char_traits<char>::eof());
}

TEST(EscapeFilterStreamBuf, ByteFFIsNoEndOfFile)
{
    std::stringbuf source("\xff");
    EscapeFilterStreamBuf filter(&source);
    EXPECT_EQ(filter.sgetc(), 0xff);
    EXPECT_EQ(filter.sbumpc(), 0xff);
    EXPECT_EQ(filter.sbumpc(), std::char_traits<char>::eof());
}

TEST(EscapeFilterStreamBuf, TheWorkedConversion)
{
    EXPECT_EQ(filtered(withControls("~T" + textHead + "0FAB|")),
              withControls("~VF_rpl_old00|000000000FAB||~#T050012700326" "00" "VF_rpl_old00|06L000"));
}

TEST(EscapeFilterStreamBuf, ARasterHoldingEscTIsNotConverted)
{
    const std::string legacy = withControls("~T" + textHead + "0FAB|");
    const std::string converted = withControls("~VF_rpl_old00|000000000FAB||~#T050012700326" "00" "VF_rpl_old00|06L000");
    EXPECT_EQ(filtered(graphic + legacy + "\xff"), graphic + converted + "\xff");
}

TEST(EscapeFilterStreamBuf, ARasterOfRowsTimesBytesPassesUnseen)
{
    // 3 bytes by 2 rows: six raster bytes, then conversions again.
    const std::string raster = withControls("~T~B~B");
    const std::string header = withControls("~G00000000000000300002X");
    const std::string legacy = withControls("~T" + textHead + "0FAB|");
    EXPECT_EQ(filtered(header + raster + legacy).substr(0, header.size() + raster.size() + 14),
              header + raster + withControls("~VF_rpl_old00|"));
    const std::string empty = withControls("~G00000000000000000099X");
    EXPECT_EQ(filtered(empty + legacy).substr(0, empty.size() + 14), empty + withControls("~VF_rpl_old00|"));
}

TEST(EscapeFilterStreamBuf, AGraphicHeaderIsNotConvertedEither)
{
    const std::string header = withControls("~G~T00000000000100001X") + "R";
    EXPECT_EQ(filtered(header), header);
}

TEST(EscapeFilterStreamBuf, TheByteBehindAnEscIsNeverTheStartOfARecord)
{
    const std::string input = withControls("~~T" + textHead + "0FAB|~~B~");
    EXPECT_EQ(filtered(input), input);
}

TEST(EscapeFilterStreamBuf, AShortGraphicEndsWithTheSource)
{
    EXPECT_EQ(filtered(withControls("~G0000")), withControls("~G0000"));
    EXPECT_EQ(filtered(withControls("~G00000000000000100009X") + "ab"), withControls("~G00000000000000100009X") + "ab");
}

TEST(EscapeFilterStreamBuf, TwoLegacyVariablesWithOnePromptMakeOneVariable)
{
    const std::string input = withControls("~T" + textHead + "0VRibbon:|first|~T" + textHead + "0VRibbon:|second|~T" +
                                    textHead + "0FAB|");
    EXPECT_EQ(filtered(input), withControls("~VI_rpl_old00|first|Ribbon:|0000000000||"
                                     "~#T050012700326" "00" "VI_rpl_old00|06L000"
                                     "~#T050012700326" "00" "VI_rpl_old00|06L000"
                                     "~VF_rpl_old02|000000000FAB||~#T050012700326" "00" "VF_rpl_old02|06L000"));
}

TEST(EscapeFilterStreamBuf, EachFilterBeginsItsIdsAndPromptsAnew)
{
    const std::string input = withControls("~T" + textHead + "0VRibbon:|first|");
    EXPECT_EQ(filtered(input), filtered(input));
}

TEST(EscapeFilterStreamBuf, TheHundredthMadeUpIdHasThreeDigits)
{
    std::string input;
    for (int i = 0; i <= 100; ++i)
        input += withControls("~T" + textHead + "0FAB|");
    const std::string output = filtered(input);
    EXPECT_NE(output.find(withControls("|06L000~VF_rpl_old99|")), std::string::npos);
    EXPECT_EQ(output.substr(output.size() - 20), withControls("VF_rpl_old100|06L000"));
    EXPECT_EQ(output.find("_rpl_old101"), std::string::npos);
}

TEST(EscapeFilterStreamBuf, ConversionFailuresReachTheReader)
{
    std::stringbuf source(withControls("~B000001000020001000XD"));
    EscapeFilterStreamBuf filter(&source);
    std::istream in(&filter);
    in.exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { in.get(); }, "user defined parameters not found");
}
