#include "cli/RenderDriver.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

ArgumentMap parse(std::vector<std::string> words)
{
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    return parseArguments(static_cast<int>(argv.size()), argv.data());
}

}  // namespace

TEST(RenderDriver, ArgumentsSplitAtTheFirstEqualsSign)
{
    const ArgumentMap arguments = parse({"ktr-render", "in=a=b=c", "x=", "noequals", "=v"});
    const ArgumentMap expected = {{"in", "a=b=c"}, {"x", ""}, {"", "v"}};
    EXPECT_EQ(arguments, expected);
}

TEST(RenderDriver, ARepeatedKeyKeepsTheLastValue)
{
    EXPECT_EQ(parse({"ktr-render", "out=1", "out=2"}).at("out"), "2");
}

TEST(RenderDriver, TheProgramNameIsNotAnArgument)
{
    EXPECT_TRUE(parse({"in=a"}).empty());
}

TEST(RenderDriver, PrinterModelsSetTheRasterSize)
{
    struct Case {
        std::string name;
        int32_t width, height;
    };
    const Case cases[] = {{"KTA1", 640, 608},   {"KTA2", 640, 6400},  {"KTB1", 1280, 608}, {"KTB2", 1280, 6400},
                          {"KTC1", 1920, 608},  {"KTC2", 1920, 6400}, {"KTD1", 2560, 608}, {"KTD2", 2560, 6400},
                          {"KTD3", 2560, 1216}, {"kta1", 2560, 1216}, {"", 2560, 1216}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        int32_t width = 2560, height = 1216;
        printerDimensions(c.name, width, height);
        EXPECT_EQ(width, c.width);
        EXPECT_EQ(height, c.height);
    }
}

TEST(RenderDriver, ExecutableDirectoryIsCutBeforeTheLastSeparator)
{
    const std::string directory = executableDirectory();
    EXPECT_TRUE(directoryExists(directory));
    EXPECT_NE(directory.back(), '/');
    EXPECT_FALSE(directoryExists(directory + "/no such directory"));
}

TEST(RenderDriver, UsageIsPrintedExactly)
{
    testing::internal::CaptureStdout();
    printUsage();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Usage:\n"
              "ktr-render.exe -help\n"
              "ktr-render.exe in=escape-file [out=bmp-file] [trim=y] [showvariables={y|{Path to variablesfile}}] "
              "[printer={KTA1|KTA2|..KTD3}] [fontpath=C:\\TTF2] [width=640] [height=608] "
              "[variablename=variablevalue] [loadvariables={Path to variablesfile}] \n"
              "\n");
}
