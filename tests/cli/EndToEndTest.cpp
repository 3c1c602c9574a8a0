// The built ktr-render on the escape files of tests/cli/cases: standard output byte for byte,
// the exit code, and the bitmap it leaves behind.
#include <gtest/gtest.h>

#include <regex>

#include "tests/cli/CliRunner.h"

using namespace cli_test;

namespace {

const std::string usage =
    "Usage:\n"
    "ktr-render.exe -help\n"
    "ktr-render.exe in=escape-file [out=bmp-file] [trim=y] [showvariables={y|{Path to variablesfile}}] "
    "[printer={KTA1|KTA2|..KTD3}] [fontpath=C:\\TTF2] [width=640] [height=608] "
    "[variablename=variablevalue] [loadvariables={Path to variablesfile}] \n"
    "\n";

void expectBlankTrimmedBitmap(const std::filesystem::path& path)
{
    ASSERT_TRUE(std::filesystem::exists(path)) << path;
    const Bitmap bitmap = readBitmap(path);
    EXPECT_EQ(bitmap.x, 0);
    EXPECT_EQ(bitmap.y, -1);
    EXPECT_EQ(bitmap.width, 32);
    EXPECT_EQ(bitmap.height, 1);
    EXPECT_EQ(bitmap.fileSize, 66u);
    EXPECT_EQ(std::filesystem::file_size(path), 66u);
    EXPECT_EQ(bitmap.inkCount(), 0);
}

}  // namespace

TEST(EndToEnd, NoArgumentsAsksForInAndShowsUsage)
{
    const RunResult run = runCase("", "", {});
    EXPECT_EQ(run.output, "Error: missing required argument (in=...)\n" + usage);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "");
}

TEST(EndToEnd, HelpAloneShowsUsageInEachSpelling)
{
    for (const char* word : {"-help", "/help", "--help", "-?"}) {
        SCOPED_TRACE(word);
        const RunResult run = runCase("", "", {word});
        EXPECT_EQ(run.output, usage);
        EXPECT_EQ(run.exitCode, 0);
    }
}

TEST(EndToEnd, VersionAloneShowsTheBuildStampInEachSpelling)
{
    const std::regex layout("kt-render\nBuild: [A-Z][a-z]{2} [ 0-9][0-9] [0-9]{4} - [0-9]{2}:[0-9]{2}:[0-9]{2}\n");
    for (const char* word : {"-version", "/version", "--version"}) {
        SCOPED_TRACE(word);
        const RunResult run = runCase("", "", {word});
        EXPECT_TRUE(std::regex_match(run.output, layout)) << run.output;
        EXPECT_EQ(run.exitCode, 0);
    }
}

TEST(EndToEnd, HelpBesideASecondArgumentIsIgnoredAndTheRunGoesOn)
{
    const RunResult run = runCase("minimal.esc", "a", {"-help", "in=a"});
    EXPECT_EQ(run.output, defaultRunOutput("a"));
    EXPECT_EQ(run.exitCode, 0);
    expectBlankTrimmedBitmap(run.dir / "a.bmp");
}

TEST(EndToEnd, AnUnknownSingleArgumentIsNoHelp)
{
    const RunResult run = runCase("", "", {"-helpme"});
    EXPECT_EQ(run.output, "Error: missing required argument (in=...)\n" + usage);
    EXPECT_EQ(run.exitCode, 1);
}

TEST(EndToEnd, TheBitmapNameAppendsToTheWholeInputName)
{
    const RunResult run = runCase("minimal.esc", "a.esc", {"in=a.esc"});
    EXPECT_EQ(run.output, defaultRunOutput("a.esc"));
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.errors, "");
    expectBlankTrimmedBitmap(run.dir / "a.esc.bmp");
    EXPECT_FALSE(std::filesystem::exists(run.dir / "a.bmp"));
}

TEST(EndToEnd, AnUnknownPrinterKeepsTheInitialRaster)
{
    const RunResult run = runCase("minimal.esc", "in.esc", {"in=in.esc", "printer=KTD3", "trim=n", "fontpath=f"});
    EXPECT_EQ(run.output,
              "setting height to 608\n"
              "setting width to 640\n"
              "\nFound file: in.esc (2560x1216)"
              "\nFontpath: f/"
              "\n\nFound format start sequence...\n"
              "\nWriting bitmap to in.esc.bmp\n");
    EXPECT_EQ(run.exitCode, 0);
    const Bitmap bitmap = readBitmap(run.dir / "in.esc.bmp");
    EXPECT_EQ(bitmap.width, 2560);
    EXPECT_EQ(bitmap.height, 1216);
}

TEST(EndToEnd, WidthAndHeightAreAcceptedButTheRasterComesFromThePrinter)
{
    const RunResult run =
        runCase("minimal.esc", "in.esc", {"in=in.esc", "width=100", "height=100", "printer=KTA1", "trim=no"});
    const std::string fontPath = executableDirectory() + "\\TTF2";
    EXPECT_EQ(run.output, "setting fontpath to " + fontPath +
                              "\n"
                              "\nFound file: in.esc (640x608)"
                              "\nFontpath: " +
                              fontPath +
                              "/"
                              "\n\nFound format start sequence...\n"
                              "\nWriting bitmap to in.esc.bmp\n");
    const Bitmap bitmap = readBitmap(run.dir / "in.esc.bmp");
    EXPECT_EQ(bitmap.width, 640);
    EXPECT_EQ(bitmap.height, 608);
}

TEST(EndToEnd, AFullSaveOfKta1Is48702BytesOfPaper)
{
    const RunResult run = runCase("minimal.esc", "in.esc", {"in=in.esc", "printer=KTA1", "trim=Y"});
    EXPECT_EQ(run.exitCode, 0);
    const auto path = run.dir / "in.esc.bmp";
    EXPECT_EQ(std::filesystem::file_size(path), 48702u);
    const Bitmap bitmap = readBitmap(path);
    EXPECT_EQ(bitmap.fileSize, 48702u);
    EXPECT_EQ(bitmap.x, 0);
    EXPECT_EQ(bitmap.y, 0);
    EXPECT_EQ(bitmap.width, 640);
    EXPECT_EQ(bitmap.height, 608);
    EXPECT_EQ(bitmap.inkCount(), 0);
}

TEST(EndToEnd, ShowVariablesSilencesTheProgressLines)
{
    const RunResult run = runCase("minimal.esc", "in.esc", {"in=in.esc", "showvariables=list.txt", "printer=KTA1"});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.exitCode, 0);
    expectBlankTrimmedBitmap(run.dir / "in.esc.bmp");
}

TEST(EndToEnd, LoadVariablesIsAnnouncedWithTheDigitOne)
{
    const RunResult run =
        runCase("minimal.esc", "in.esc", {"in=in.esc", "loadvariables=vars.txt", "printer=KTA1", "fontpath=f",
                                          "width=1", "height=1", "trim=y"});
    EXPECT_EQ(run.output.substr(0, 27), "setting loadvariables to 1\n");
}

TEST(EndToEnd, TheLastOfARepeatedKeyCounts)
{
    const RunResult run = runCase("minimal.esc", "in.esc", {"in=in.esc", "out=first.bmp", "out=second.bmp"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "first.bmp"));
    expectBlankTrimmedBitmap(run.dir / "second.bmp");
}

TEST(EndToEnd, AMissingInputFileIsReported)
{
    const RunResult run = runCase("", "", {"in=nope.esc", "fontpath=f", "printer=KTA1", "width=1", "height=1",
                                           "trim=y"});
    EXPECT_EQ(run.output, "Error: Failed to open file: nope.esc\n");
    EXPECT_EQ(run.exitCode, 1);
}

TEST(EndToEnd, ADirectoryAsInputCannotBeOpened)
{
    const RunResult run = runCase("", "", {"in=.", "fontpath=f", "printer=KTA1", "width=1", "height=1", "trim=y"}, 5);
    EXPECT_EQ(run.output, "Error: Failed to open file: .\n");
    EXPECT_EQ(run.exitCode, 1);
}

TEST(EndToEnd, ALowerCaseEBeforeTheFormatStartEndsTheRun)
{
    const RunResult run = runCase("lower_e.esc", "in.esc", {"in=in.esc"});
    const std::string expected = defaultRunOutput("in.esc");
    const std::string head = expected.substr(0, expected.find("\n\nFound format start"));
    EXPECT_EQ(run.output, head + "\n\nSeems to be an error: if (escStream.peek() == 'e')\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST(EndToEnd, ALowerCaseEDirectlyBehindEscIsNoError)
{
    const RunResult run = runCase("escape_e.esc", "in.esc", {"in=in.esc"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc"));
    EXPECT_EQ(run.exitCode, 0);
    expectBlankTrimmedBitmap(run.dir / "in.esc.bmp");
}

TEST(EndToEnd, EscEscFStartsNothing)
{
    // Had the pair started a format, the stray Z behind its ten name bytes would have failed the parse.
    const RunResult run = runCase("escape_escape_f.esc", "in.esc", {"in=in.esc"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc"));
    EXPECT_EQ(run.exitCode, 0);
}

TEST(EndToEnd, TheScanDoesNotInterpretWhatStandsBeforeTheFormatStart)
{
    const RunResult run = runCase("raw_preamble.esc", "in.esc", {"in=in.esc"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc"));
    EXPECT_EQ(run.exitCode, 0);
}

TEST(EndToEnd, AFileWithoutFormatStartNeverEnds)
{
    const RunResult run = runCase("no_start.esc", "in.esc", {"in=in.esc"}, 2);
    EXPECT_EQ(run.exitCode, 124);  // killed by the timeout
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST(EndToEnd, AStrayByteBehindTheNameIsReportedWithItsPosition)
{
    const RunResult run = runCase("stray_byte.esc", "in.esc", {"in=in.esc"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc") +
                              "no termination character found for format end, but ASCII 0x41 (A)\n"
                              "Error at position: 13\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST(EndToEnd, TheEndOfInputBehindTheNameIsAnUnknownException)
{
    const RunResult run = runCase("name_then_end.esc", "in.esc", {"in=in.esc"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc") + "Caught unknown exception\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST(EndToEnd, EscQAtTopLevelReadsToTheEndAndFails)
{
    const RunResult run = runCase("escape_q.esc", "in.esc", {"in=in.esc"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc") + "Caught unknown exception\n");
    EXPECT_EQ(run.exitCode, 1);
}

TEST(EndToEnd, AnUnknownSelectorThatSwallowsTheEndMarkFails)
{
    const RunResult run = runCase("skip_loses_end.esc", "in.esc", {"in=in.esc"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc") + "Caught unknown exception\n");
    EXPECT_EQ(run.exitCode, 1);
}

TEST(EndToEnd, BytesBehindTheEndMarkHaveNoEffect)
{
    const RunResult run = runCase("behind_end.esc", "in.esc", {"in=in.esc"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc"));
    EXPECT_EQ(run.exitCode, 0);
    expectBlankTrimmedBitmap(run.dir / "in.esc.bmp");
}

TEST(EndToEnd, DroppedRecordsAndUnknownSelectorsLeaveABlankFormat)
{
    for (const char* file : {"dropped_records.esc", "unknown_selectors.esc"}) {
        SCOPED_TRACE(file);
        const RunResult run = runCase(file, "in.esc", {"in=in.esc"});
        EXPECT_EQ(run.output, defaultRunOutput("in.esc"));
        EXPECT_EQ(run.exitCode, 0);
        expectBlankTrimmedBitmap(run.dir / "in.esc.bmp");
    }
}

TEST(EndToEnd, ABitmapThatCannotBeWrittenIsReportedAndTheRunSucceeds)
{
    const RunResult run = runCase("minimal.esc", "in.esc", {"in=in.esc", "out=no/dir/x.bmp"});
    const std::string expected = defaultRunOutput("in.esc");
    EXPECT_EQ(run.output, expected.substr(0, expected.rfind("in.esc.bmp")) + "no/dir/x.bmp\n" +
                              "Can't open bmp file for writing");
    EXPECT_EQ(run.exitCode, 0);
}

TEST(EndToEnd, DatesAndFormulasWithoutDrawablesLeaveABlankFormat)
{
    const RunResult run = runCase("dates_and_formulas.esc", "in.esc", {"in=in.esc"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc"));
    EXPECT_EQ(run.exitCode, 0);
    expectBlankTrimmedBitmap(run.dir / "in.esc.bmp");
}

TEST(EndToEnd, AFailingRecordIsReportedAtTheByteBehindWhatItRead)
{
    const struct {
        const char* file;
        const char* report;
    } cases[] = {
        {"date_bad_kind.esc", "Missing F or V or O character\nError at position: 21\n"},
        {"legacy_no_ud.esc", "user defined parameters not found\nError at position: 34\n"},
        {"legacy_bad_content.esc",
         "error parsing old text escape sequence, type must be 'F', 'V', 'S', 'T' or 'R', got: 'X'\n"
         "Error at position: 32\n"},
        // Without a unit letter the date record takes the ESC of the text record, and the parser stops at its '#'.
        {"legacy_date_without_unit.esc",
         "no termination character found for format end, but ASCII 0x23 (#)\nError at position: 43\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const RunResult run = runCase(c.file, "in.esc", {"in=in.esc"});
        EXPECT_EQ(run.output, defaultRunOutput("in.esc") + c.report);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
    }
}

TEST(EndToEnd, ARasterHoldingEscTIsPaintedAsItStands)
{
    const RunResult run = runCase("graphic_with_esc_t.esc", "in.esc", {"in=in.esc", "trim=n", "printer=KTA1"});
    const std::string last = "\nWriting bitmap to in.esc.bmp\n";
    ASSERT_GE(run.output.size(), last.size());
    EXPECT_EQ(run.output.substr(run.output.size() - last.size()), last);
    EXPECT_EQ(run.exitCode, 0);
    const Bitmap bitmap = readBitmap(run.dir / "in.esc.bmp");
    EXPECT_EQ(bitmap.inkCount(), 7);
    EXPECT_EQ(std::vector<int>(bitmap.pixels[0].begin(), bitmap.pixels[0].begin() + 8),
              (std::vector<int>{0, 0, 0, 1, 1, 0, 1, 1}));
    EXPECT_EQ(std::vector<int>(bitmap.pixels[1].begin(), bitmap.pixels[1].begin() + 8),
              (std::vector<int>{0, 1, 0, 1, 0, 1, 0, 0}));
}

TEST(EndToEnd, ALegacyDateFormatWithoutVtWaitsForMoreInput)
{
    const RunResult run = runCase("legacy_date_runs_on.esc", "in.esc", {"in=in.esc"}, 2);
    EXPECT_EQ(run.exitCode, 124);  // killed by the timeout
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST(EndToEnd, TheBundledExampleRenders)
{
    const RunResult run = runCase("../../../examples/demo.esc", "demo.esc", {"in=demo.esc", "showvariables=y"});
    EXPECT_EQ(run.output, "VCLot=5\n");
    EXPECT_EQ(run.exitCode, 0);
    const Bitmap bitmap = readBitmap(run.dir / "demo.esc.bmp");
    EXPECT_EQ(bitmap.x, 0);
    EXPECT_EQ(bitmap.y, 0);
    EXPECT_GT(bitmap.inkCount(), 100000);
}

TEST(EndToEnd, ADateWhoseOffsetIsTheDateItselfFailsInsteadOfOverflowingTheStack)
{
    const RunResult run = runCase("date_offset_itself.esc", "in.esc", {"in=in.esc", "showvariables=y"});
    EXPECT_EQ(run.output, "exceeded maximum depth of autocode tree\nError at position: 34\n");
    EXPECT_EQ(run.exitCode, 1);
}
