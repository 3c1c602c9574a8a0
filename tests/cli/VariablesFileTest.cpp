#include "cli/VariablesFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/support/ExpectFailure.h"

namespace {

const std::string VT = "\v";

class VariablesFileTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(dir);
        std::istringstream in("VARS      \x1bVIb" + VT + "bee" + VT + "P" + VT + "0 0002" + "0005" + VT + VT +
                              "\x1bVIa" + VT + "ay" + VT + "P" + VT + "0 0000" + "0005" + VT + VT + "\x1bVXx" + VT +
                              "ex" + VT + "\x1bVCn" + VT + "S" + "000000003" + "000000099" + "000000001" +
                              "000000001" + "000000000" + VT + "L00004" + VT + VT + "\xff");
        format.parse(in, nullptr, 0);
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    std::filesystem::path write(const std::string& name, const std::string& bytes)
    {
        const std::filesystem::path path = dir / name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    template <class Action>
    static std::string printed(Action&& action)
    {
        testing::internal::CaptureStdout();
        action();
        return testing::internal::GetCapturedStdout();
    }

    std::filesystem::path dir =
        std::filesystem::temp_directory_path() / ("ktr_variables_" + std::to_string(::getpid()));
    Image image{32, 4};
    KT_FMT::KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(VariablesFileTest, LinesSplitAtTheFirstEqualsAndNeedAValue)
{
    struct Case {
        std::string bytes;
        VariablePairs expected;
    };
    const Case cases[] = {
        {"VIa=x=y\n", {{"VIa", "x=y"}}},
        {"VIa=\n", {}},
        {"noequals\n", {}},
        {"\n\n", {}},
        {"=orphan\n", {{"", "orphan"}}},
        {"VIa=1\nVIa=2\n", {{"VIa", "1"}, {"VIa", "2"}}},
        {"VIa=last", {{"VIa", "last"}}},
        {"VIa=crlf\r\nVCn=4\r\n", {{"VIa", "crlf"}, {"VCn", "4"}}},
        {"VIa= spaced \n", {{"VIa", " spaced "}}},
        {"", {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bytes);
        const std::optional<VariablePairs> pairs = loadVariablesFile(write("vars.txt", c.bytes).string());
        ASSERT_TRUE(pairs.has_value());
        EXPECT_EQ(*pairs, c.expected);
    }
}

TEST_F(VariablesFileTest, AMissingFileGivesNothing)
{
    EXPECT_FALSE(loadVariablesFile((dir / "missing.txt").string()).has_value());
}

TEST_F(VariablesFileTest, ADirectoryIsNoVariablesFile)
{
    EXPECT_FALSE(loadVariablesFile(dir.string()).has_value());
}

TEST_F(VariablesFileTest, PromptsAndCountersAreAssignedAndEchoedUnlessQuiet)
{
    EXPECT_EQ(printed([&] { assignVariable(false, format, "VIa", "new"); }), "\nVariable: VIa=new");
    EXPECT_EQ(format.getContentOfElement("VIa"), "new");
    EXPECT_EQ(printed([&] { assignVariable(true, format, "VCn", "12"); }), "");
    EXPECT_EQ(format.getContentOfElement("VCn"), "12");
}

TEST_F(VariablesFileTest, OtherNamesAreNotFoundEvenWhenQuiet)
{
    for (const char* key : {"VXx", "Ia", "a", "VIA", "", "VDday"}) {
        SCOPED_TRACE(key);
        EXPECT_EQ(printed([&] { assignVariable(true, format, key, "1"); }), std::string("\nVariable not found: ") + key);
    }
    EXPECT_EQ(format.getContentOfElement("VXx"), "ex");
}

TEST_F(VariablesFileTest, AFailedAssignmentIsNotEchoed)
{
    std::string output;
    testing::internal::CaptureStdout();
    expectFailure<KT_ERROR::illegal_content>([&] { assignVariable(false, format, "VIb", "x"); },
                                             "new input to variable 'Ib' is too short, must be at least 2");
    output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(output, "");
    EXPECT_EQ(format.getContentOfElement("VIb"), "bee");
}

TEST_F(VariablesFileTest, TheListingPrintsAndWritesPromptsThenCounters)
{
    const std::filesystem::path path = dir / "list.txt";
    const std::string listing = "VIa=ay\nVIb=bee\nVCn=3\n";
    EXPECT_EQ(printed([&] { listVariables(format, path.string()); }), listing);
    std::ifstream in(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), listing);
}

TEST_F(VariablesFileTest, AnUnwritableListingIsReportedAndPrintedAllTheSame)
{
    const std::string path = (dir / "no" / "such" / "list.txt").string();
    EXPECT_EQ(printed([&] { listVariables(format, path); }),
              "VIa=ay\nVIb=bee\nVCn=3\nCan't open file for writing: " + path + "\n");
}

TEST_F(VariablesFileTest, FileValuesComeFirstThenArgumentsInKeyOrderThenTheListing)
{
    write("vars.txt", "VCn=20\nVIa=file\n");
    const ArgumentMap arguments{{"in", (dir / "f.esc").string()},
                                {"loadvariables", (dir / "vars.txt").string()},
                                {"showvariables", "y"},
                                {"VIa", "arg"},
                                {"VCn", "21"},
                                {"trim", "n"}};
    bool applied = false;
    const std::string output = printed([&] { applied = applyVariables(arguments, format, false); });
    EXPECT_TRUE(applied);
    EXPECT_EQ(output,
              "\nVariable: VCn=20\nVariable: VIa=file\nVariable: VCn=21\nVariable: VIa=arg"
              "VIa=arg\nVIb=bee\nVCn=21\n");
    std::ifstream in(dir / "f.esc.variables", std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "VIa=arg\nVIb=bee\nVCn=21\n");
}

TEST_F(VariablesFileTest, AnUnreadableVariablesFileStopsBeforeAnyAssignment)
{
    const ArgumentMap arguments{{"in", "f.esc"}, {"loadvariables", (dir / "missing").string()}, {"VIa", "arg"}};
    bool applied = true;
    EXPECT_EQ(printed([&] { applied = applyVariables(arguments, format, true); }),
              "Datei konnte nicht ge\xc3\xb6" "ffnet werden.\n");
    EXPECT_FALSE(applied);
    EXPECT_EQ(format.getContentOfElement("VIa"), "ay");
}

TEST_F(VariablesFileTest, WithoutShowVariablesNothingIsListed)
{
    const ArgumentMap arguments{{"in", (dir / "f.esc").string()}, {"VIa", "arg"}};
    EXPECT_EQ(printed([&] { applyVariables(arguments, format, false); }), "\nVariable: VIa=arg");
    EXPECT_FALSE(std::filesystem::exists(dir / "f.esc.variables"));
}
