// The built ktr-render with variables: assignments, variables files, the listing and their failures.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/cli/CliRunner.h"

using namespace cli_test;

namespace {

// VIBatch has a minimum of 2 and a maximum of 6, VIRibbon: a maximum of 10, VCAlpha counts in letters.
const std::string listing =
    "VIBatch=B1\n"
    "VIRibbon:=abc\n"
    "VCAlpha=0\n"
    "VCLot=5\n";

void writeFile(const std::filesystem::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string withLoadLine(const std::string& in)
{
    std::string expected = defaultRunOutput(in);
    const size_t firstLine = expected.find('\n') + 1;
    return expected.insert(firstLine, "setting loadvariables to 1\n");
}

std::string fileSize(const RunResult& run, const std::string& name)
{
    return std::to_string(std::filesystem::file_size(run.dir / name));
}

}  // namespace

TEST(VariablesEndToEnd, TheListingShowsPromptsThenCountersEachByIdAndIsQuiet)
{
    const RunResult run = runCase("variables.esc", "in.esc", {"in=in.esc", "showvariables=y"});
    EXPECT_EQ(run.output, listing);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(readFile(run.dir / "in.esc.variables"), listing);
    EXPECT_TRUE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST(VariablesEndToEnd, AListingPathIsUsedAsItStands)
{
    const RunResult run = runCase("variables.esc", "in.esc", {"in=in.esc", "showvariables=list.txt"});
    EXPECT_EQ(run.output, listing);
    EXPECT_EQ(readFile(run.dir / "list.txt"), listing);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.variables"));
}

TEST(VariablesEndToEnd, AnEmptyListingPathCannotBeWrittenAndTheRunGoesOn)
{
    const RunResult run = runCase("variables.esc", "in.esc", {"in=in.esc", "showvariables="});
    EXPECT_EQ(run.output, listing + "Can't open file for writing: \n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST(VariablesEndToEnd, AFormatWithoutVariablesListsNothingAndLeavesAnOldFile)
{
    RunResult run = runCase("minimal.esc", "in.esc", {"in=in.esc", "showvariables=y"});
    EXPECT_EQ(run.output, "");
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.variables"));

    run = runCase("minimal.esc", "in.esc", {"in=in.esc", "showvariables=old.txt"});
    writeFile(run.dir / "old.txt", "kept");
    const std::string command = "cd '" + run.dir.string() + "' && '" + KTR_RENDER_BINARY +
                                "' in=in.esc showvariables=old.txt > out.txt";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(readFile(run.dir / "old.txt"), "kept");
}

TEST(VariablesEndToEnd, AssignmentsGoInKeyOrderAndAreEchoed)
{
    const RunResult run =
        runCase("variables.esc", "in.esc", {"in=in.esc", "VIRibbon:=x", "VCLot=7", "VIBatch=zz"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc") +
                              "\nVariable: VCLot=7"
                              "\nVariable: VIBatch=zz"
                              "\nVariable: VIRibbon:=x");
    EXPECT_EQ(run.exitCode, 0);
}

TEST(VariablesEndToEnd, UnknownNamesAreReportedAlsoWhenQuiet)
{
    const RunResult run = runCase("variables.esc", "in.esc",
                                  {"in=in.esc", "showvariables=y", "VXGTIN=123", "Ribbon:=plain", "VDToday=1"});
    EXPECT_EQ(run.output,
              "\nVariable not found: Ribbon:"
              "\nVariable not found: VDToday"
              "\nVariable not found: VXGTIN" +
                  listing);
    EXPECT_EQ(run.exitCode, 0);
}

TEST(VariablesEndToEnd, AnEmptyValueOnTheCommandLineIsAValue)
{
    const RunResult run = runCase("variables.esc", "in.esc", {"in=in.esc", "showvariables=y", "VIRibbon:="});
    EXPECT_EQ(run.output, "VIBatch=B1\nVIRibbon:=\nVCAlpha=0\nVCLot=5\n");
}

TEST(VariablesEndToEnd, ACounterSetToTextCountsFromZero)
{
    const RunResult run = runCase("variables.esc", "in.esc",
                                  {"in=in.esc", "showvariables=y", "VCLot=abc", "VCAlpha=27xyz"});
    EXPECT_EQ(run.output, "VIBatch=B1\nVIRibbon:=abc\nVCAlpha=27\nVCLot=0\n");
    EXPECT_EQ(run.exitCode, 0);
}

TEST(VariablesEndToEnd, AVariablesFileKeepsEqualsInValuesAndSkipsWhatHasNoValue)
{
    RunResult run = runCase("variables.esc", "in.esc", {});
    writeFile(run.dir / "vars.txt",
              "VIRibbon:=x=y\n"
              "VIBatch=\n"
              "noequals\n"
              "\n"
              "VCLot=12abc\r\n"
              "=orphan\n");
    const std::string command = "cd '" + run.dir.string() + "' && '" + KTR_RENDER_BINARY +
                                "' in=in.esc loadvariables=vars.txt showvariables=y > out.txt";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(readFile(run.dir / "out.txt"),
              "\nVariable not found: "
              "VIBatch=B1\nVIRibbon:=x=y\nVCAlpha=0\nVCLot=12\n");
}

TEST(VariablesEndToEnd, TheFileIsAppliedBeforeTheCommandLineAndBothAreEchoed)
{
    RunResult run = runCase("variables.esc", "in.esc", {});
    writeFile(run.dir / "vars.txt", "VIRibbon:=fromfile\nVCLot=8\nVCLot=9\n");
    const std::string command = "cd '" + run.dir.string() + "' && '" + KTR_RENDER_BINARY +
                                "' in=in.esc loadvariables=vars.txt VIRibbon:=fromargs > out.txt";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(readFile(run.dir / "out.txt"), withLoadLine("in.esc") +
                                                 "\nVariable: VIRibbon:=fromfile"
                                                 "\nVariable: VCLot=8"
                                                 "\nVariable: VCLot=9"
                                                 "\nVariable: VIRibbon:=fromargs");
}

TEST(VariablesEndToEnd, AMissingVariablesFileEndsTheRunWithoutABitmap)
{
    for (const bool quiet : {false, true}) {
        SCOPED_TRACE(quiet);
        std::vector<std::string> args{"in=in.esc", "loadvariables=nope.txt"};
        if (quiet)
            args.push_back("showvariables=y");
        const RunResult run = runCase("variables.esc", "in.esc", args);
        EXPECT_EQ(run.output, (quiet ? std::string() : withLoadLine("in.esc")) +
                                  "Datei konnte nicht ge\xc3\xb6" "ffnet werden.\n");
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
        EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.variables"));
    }
}

TEST(VariablesEndToEnd, ATooLongInputEndsTheRunWithItsByteCount)
{
    const RunResult run =
        runCase("variables.esc", "in.esc", {"in=in.esc", "showvariables=y", "VIRibbon:=\\<UNIC(00C4)>0123456789AB"});
    EXPECT_EQ(run.output,
              "new input '\\<UNIC(00C4)>0123456789AB' to variable 'IRibbon:' exceeds max length of variable (25/10)\n"
              "Error at position: " +
                  fileSize(run, "in.esc") + "\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.variables"));
}

TEST(VariablesEndToEnd, AnUnicodeEscapeCountsAsOneAgainstTheMaximum)
{
    const RunResult run =
        runCase("variables.esc", "in.esc", {"in=in.esc", "showvariables=y", "VIRibbon:=\\<UNIC(00C4)>012345678"});
    EXPECT_EQ(run.output, "VIBatch=B1\nVIRibbon:=\\<UNIC(00C4)>012345678\nVCAlpha=0\nVCLot=5\n");
}

TEST(VariablesEndToEnd, ATooShortInputEndsTheRun)
{
    const RunResult run = runCase("variables.esc", "in.esc", {"in=in.esc", "VIBatch=x"});
    EXPECT_EQ(run.output, defaultRunOutput("in.esc") +
                              "new input to variable 'IBatch' is too short, must be at least 2\n"
                              "Error at position: " +
                              fileSize(run, "in.esc") + "\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST(VariablesEndToEnd, RecordsThatBreakTheirRulesFailBehindTheFaultyField)
{
    struct Case {
        std::string file;
        std::string message;
        int position;
    };
    const Case cases[] = {
        {"counter_step_zero.esc", "counter: step value must not be zero", 74},
        {"counter_bad_trigger.esc",
         "malformed trigger type while parsing counter; expected 'S', 'T' or 'R' but got 'Q'", 20},
        {"variable_too_long.esc", "VIname content length is greater than max. length 3", 39},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const RunResult run = runCase(c.file, "in.esc", {"in=in.esc", "showvariables=y"});
        EXPECT_EQ(run.output, c.message + "\nError at position: " + std::to_string(c.position) + "\n");
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
    }
}

TEST(VariablesEndToEnd, TheListingReadsBackUpToItsEmptyValues)
{
    const RunResult first = runCase("variables.esc", "in.esc",
                                    {"in=in.esc", "showvariables=y", "VIRibbon:=", "VIBatch=a=b", "VCLot=77"});
    const std::string written = "VIBatch=a=b\nVIRibbon:=\nVCAlpha=0\nVCLot=77\n";
    EXPECT_EQ(readFile(first.dir / "in.esc.variables"), written);

    const RunResult second = runCase("variables.esc", "in.esc",
                                     {"in=in.esc", "showvariables=y",
                                      "loadvariables=" + (first.dir / "in.esc.variables").string()});
    EXPECT_EQ(second.output, "VIBatch=a=b\nVIRibbon:=abc\nVCAlpha=0\nVCLot=77\n");
    EXPECT_EQ(second.exitCode, 0);
}

TEST(VariablesEndToEnd, AValueWithANewlineReadsBackAsTwoLines)
{
    const RunResult first = runCase("variables.esc", "in.esc", {"in=in.esc", "showvariables=y", "VIRibbon:=a\nb"});
    EXPECT_EQ(readFile(first.dir / "in.esc.variables"), "VIBatch=B1\nVIRibbon:=a\nb\nVCAlpha=0\nVCLot=5\n");
    const RunResult second = runCase("variables.esc", "in.esc",
                                     {"in=in.esc", "showvariables=y",
                                      "loadvariables=" + (first.dir / "in.esc.variables").string()});
    EXPECT_EQ(second.output, "VIBatch=B1\nVIRibbon:=a\nVCAlpha=0\nVCLot=5\n");
}

TEST(VariablesEndToEnd, ANameHoldingEqualsIsListedButDoesNotReadBack)
{
    // The command line splits at the first "=" as well, so such a variable can't be set from outside.
    const RunResult first = runCase("equals_name.esc", "in.esc", {"in=in.esc", "showvariables=y", "VIx=y=w"});
    EXPECT_EQ(first.output, "\nVariable not found: VIxVIx=y=v\n");
    const RunResult second = runCase("equals_name.esc", "in.esc",
                                     {"in=in.esc", "showvariables=y",
                                      "loadvariables=" + (first.dir / "in.esc.variables").string()});
    EXPECT_EQ(second.output, first.output);
}
