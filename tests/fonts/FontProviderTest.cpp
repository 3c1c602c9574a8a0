#include "fonts/FontProvider.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <vector>

#include "errors/KT_Error.h"
#include "tests/fonts/FontTestSupport.h"

using namespace fonttest;
using namespace std::string_literals;

namespace {

const std::string allNewMap =
    "0;ocr-b_2.ttf\n1;gill.ttf\n2;helvet_2.ttf\n3;gothic_2.ttf\n4;aribd_2.ttf\n5;arial_2.ttf\n6;ocr-a_2.ttf\n";

std::vector<int32_t> mappedNumbers(const FontProvider& provider)
{
    std::vector<int32_t> numbers;
    for (int32_t n = 0; n < FontProvider::FONT_COUNT; ++n)
        if (provider.isMapped(n))
            numbers.push_back(n);
    return numbers;
}

}  // namespace

TEST(FontProvider, AnEmptyDirectoryEndsWithAnEmptyMap)
{
    TempDir dir;
    FontProvider provider;
    DebugCapture debug;
    provider.init(dir.path);
    EXPECT_TRUE(mappedNumbers(provider).empty());
    EXPECT_TRUE(std::filesystem::exists(dir.file("fontmap.ini")));
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "");
    EXPECT_EQ(provider.getDamagedFonts(), (std::vector<int32_t>{0, 1, 2, 3, 4, 5}));
    EXPECT_NE(debug.text().find("trying to convert old font map\r\n"), std::string::npos);
    EXPECT_NE(debug.text().find("No font map file found, generating default file\r\n"
                                "resetting to old font files\r\n"),
              std::string::npos);
    EXPECT_NE(debug.text().find("Error: Font not found: ocr-b.ttf\r\n"), std::string::npos);
}

TEST(FontProvider, AllSevenNewFilesGiveTheNewTable)
{
    TempDir dir;
    linkDefaultFonts(dir);
    FontProvider provider;
    DebugCapture debug;
    provider.init(dir.path);
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), allNewMap);
    EXPECT_NE(debug.text().find("resetting to new font files\r\n"), std::string::npos);
    for (size_t n = 0; n < defaultFontTable.size(); ++n)
        EXPECT_EQ(provider.getFontFile(static_cast<int32_t>(n)), defaultFontTable[n].newFile);
}

TEST(FontProvider, SixOfTheSevenNewFilesGiveTheOldNames)
{
    TempDir dir;
    linkDefaultFonts(dir);
    std::filesystem::remove(dir.file("ocr-a_2.ttf"));
    linkFont(dir, "arial_2.ttf", "arial.ttf");
    FontProvider provider;
    provider.init(dir.path);
    EXPECT_EQ(mappedNumbers(provider), (std::vector<int32_t>{1, 5})) << "gill.ttf is both new and old";
    EXPECT_EQ(provider.getFontFile(5), "arial.ttf");
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "1;gill.ttf\n5;arial.ttf\n");
}

TEST(FontProvider, TheDirectoryIsCreatedWhenMissing)
{
    TempDir dir;
    FontProvider provider;
    provider.init(dir.file("fonts"));
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("fonts")));
    EXPECT_EQ(provider.getFontPath(), dir.file("fonts") + "/");
}

TEST(FontProvider, ADirectoryThatCannotBeCreatedRaisesAResourceError)
{
    TempDir dir;
    writeFile(dir.file("plain"), "x");
    FontProvider provider;
    try {
        provider.init(dir.file("plain/fonts"));
        FAIL() << "no exception";
    } catch (const KT_ERROR::resource_error& error) {
        EXPECT_EQ(std::string(error.what()), "could not create directory " + dir.file("plain/fonts") + "/");
    }
}

TEST(FontProvider, ThePathEndsInOneSeparator)
{
    TempDir dir;
    FontProvider provider;
    provider.init(dir.path + "/");
    EXPECT_EQ(provider.getFontPath(), dir.path + "/");
}

TEST(FontProvider, AnOverlongPathIsCutTo255CharactersWithTheSeparator)
{
    TempDir dir;
    const std::string parent = dir.file(std::string(100, 'a'));
    std::filesystem::create_directory(parent);
    const std::string path = parent + "/" + std::string(200, 'b');
    FontProvider provider;
    provider.init(path);
    EXPECT_EQ(provider.getFontPath(), path.substr(0, 254) + "/");
}

TEST(FontProvider, AMapWithNumberSevenKeepsItAndSkipsTheDefaults)
{
    TempDir dir;
    linkDefaultFonts(dir);
    linkFont(dir, "arial_2.ttf", "extra.ttf");
    writeFile(dir.file("fontmap.ini"), "7;extra.ttf\n4;aribd_2.ttf\n");
    FontProvider provider;
    provider.init(dir.path);
    EXPECT_EQ(mappedNumbers(provider), (std::vector<int32_t>{4, 7}));
    EXPECT_EQ(provider.getFontFile(7), "extra.ttf");
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "7;extra.ttf\n4;aribd_2.ttf\n") << "a good map is not rewritten";
}

TEST(FontProvider, ALaterLineOverwritesAnEarlierOneOfTheSameNumber)
{
    TempDir dir;
    linkDefaultFonts(dir);
    writeFile(dir.file("fontmap.ini"), "4;arial_2.ttf\n4;aribd_2.ttf");
    FontProvider provider;
    provider.init(dir.path);
    EXPECT_EQ(mappedNumbers(provider), (std::vector<int32_t>{4}));
    EXPECT_EQ(provider.getFontFile(4), "aribd_2.ttf");
}

TEST(FontProvider, CarriageReturnsStayInTheNamesAndDropTheFonts)
{
    TempDir dir;
    linkDefaultFonts(dir);
    writeFile(dir.file("fontmap.ini"), "4;aribd_2.ttf\r\n5;arial_2.ttf\n");
    FontProvider provider;
    DebugCapture debug;
    provider.init(dir.path);
    EXPECT_EQ(mappedNumbers(provider), (std::vector<int32_t>{5}));
    EXPECT_EQ(provider.getDamagedFonts(), (std::vector<int32_t>{4}));
    EXPECT_NE(debug.text().find("Error: Font not found: aribd_2.ttf\r\r\n"), std::string::npos);
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "5;arial_2.ttf\n");
    EXPECT_TRUE(std::filesystem::exists(dir.file("aribd_2.ttf"))) << "only the name with the return is deleted";
}

TEST(FontProvider, ANameOfMoreThan14CharactersInTheMapIsCut)
{
    TempDir dir;
    linkFont(dir, "arial_2.ttf", "fourteen_c.ttf");
    writeFile(dir.file("fontmap.ini"), "8;fourteen_c.ttfXYZ\n");
    FontProvider provider;
    provider.init(dir.path);
    EXPECT_EQ(provider.getFontFile(8), "fourteen_c.ttf");
}

// The old form reads the first byte less '0' as a number: a digit starts a record that then
// runs into the end of the file, any byte from 'c' on and any byte below '0' end the conversion
// at once with an empty map.
TEST(FontProvider, BadLinesMakeTheMapBadAndTheOldFormIsTried)
{
    struct Case {
        const char* map;
        const char* complaint;
        bool conversionFails;
    };
    const Case cases[] = {
        {"50;a.ttf\n", "fontmap.ini, bad font number", true},
        {"99999999999;a.ttf\n", "fontmap.ini, bad font number", true},
        {"-1;a.ttf\n", "fontmap.ini, bad font number", false},
        {"4:a.ttf\n", "fontmap.ini, bad format", true},
        {"x;a.ttf\n", "fontmap.ini, bad format", false},
        {"4;aribd_2.ttf\n\n", "fontmap.ini, bad format", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.map);
        TempDir dir;
        linkDefaultFonts(dir);
        writeFile(dir.file("fontmap.ini"), c.map);
        FontProvider provider;
        DebugCapture debug;
        provider.init(dir.path);
        const std::string said = debug.text();
        const size_t complaint = said.find(c.complaint);
        const size_t converting = said.find("trying to convert old font map\r\n");
        ASSERT_NE(complaint, std::string::npos);
        ASSERT_NE(converting, std::string::npos);
        EXPECT_LT(complaint, converting);
        const bool caught = said.find("Caught exception while parsing old file format...\r\n") != std::string::npos;
        EXPECT_EQ(caught, c.conversionFails);
        EXPECT_EQ(readFile(dir.file("fontmap.ini")), c.conversionFails ? allNewMap : "");
    }
}

TEST(FontProvider, TheFontsOfAMapThatFailsHalfwayAreCheckedBeforeTheOldFormIsTried)
{
    // Number 7 is read and found missing, which rewrites the map empty; the empty map then converts as an old
    // one that holds no record, so no defaults are applied and the Arial file stays unmapped.
    TempDir dir;
    linkFont(dir, "arial_2.ttf", "arial.ttf");
    writeFile(dir.file("fontmap.ini"), "7;gone.ttf\n50;x\n");
    FontProvider provider;
    DebugCapture debug;
    provider.init(dir.path);
    EXPECT_TRUE(mappedNumbers(provider).empty());
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "");
    EXPECT_EQ(provider.getDamagedFonts(), (std::vector<int32_t>{7}));
    const std::string said = debug.text();
    const size_t missing = said.find("Error: Font not found: gone.ttf\r\n");
    ASSERT_NE(missing, std::string::npos);
    EXPECT_LT(said.find("fontmap.ini, bad font number"), missing);
    EXPECT_LT(missing, said.find("trying to convert old font map\r\n"));
    EXPECT_EQ(said.find("resetting to"), std::string::npos);
}

TEST(FontProvider, Number49IsTheLastGoodNumberInTheMap)
{
    TempDir dir;
    linkFont(dir, "arial_2.ttf", "last.ttf");
    writeFile(dir.file("fontmap.ini"), "49;last.ttf\n");
    FontProvider provider;
    provider.init(dir.path);
    EXPECT_EQ(mappedNumbers(provider), (std::vector<int32_t>{49}));
}

TEST(FontProvider, TheOldFormIsConvertedAndRewritten)
{
    TempDir dir;
    linkDefaultFonts(dir);
    linkFont(dir, "arial_2.ttf", "extra.ttf");
    writeFile(dir.file("fontmap.ini"), "4aribd_2.ttf\xFF" "Arial Bold\xFF\xFF\xFF" "7extra.ttf\xFF" "extra\xFF");
    FontProvider provider;
    DebugCapture debug;
    provider.init(dir.path);
    EXPECT_EQ(mappedNumbers(provider), (std::vector<int32_t>{4, 7}));
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "4;aribd_2.ttf\n7;extra.ttf\n");
    EXPECT_NE(debug.text().find("Converting old c:\\ttf\\font.ini file:  \x04 aribd_2.ttf  \x07 extra.ttf"),
              std::string::npos);
    EXPECT_EQ(debug.text().find("No font map file found"), std::string::npos);
}

TEST(FontProvider, TheOldFormSkipsWhiteSpaceInNames)
{
    TempDir dir;
    linkDefaultFonts(dir);
    writeFile(dir.file("fontmap.ini"), "\n5 arial_2 .ttf\xFF\xFF");
    FontProvider provider;
    provider.init(dir.path);
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "5;arial_2.ttf\n");
}

TEST(FontProvider, AnOldFormEndingWithinARecordFallsBackToTheDefaults)
{
    const char* maps[] = {"4aribd_2.ttf\xFF" "Arial Bold", "4aribd_2.ttf", "4", "4aribd_2.ttf\xFF" "x\xFF\n"};
    for (const char* map : maps) {
        SCOPED_TRACE(map);
        TempDir dir;
        linkDefaultFonts(dir);
        writeFile(dir.file("fontmap.ini"), map);
        FontProvider provider;
        DebugCapture debug;
        provider.init(dir.path);
        EXPECT_NE(debug.text().find("Caught exception while parsing old file format...\r\n"), std::string::npos);
        EXPECT_EQ(readFile(dir.file("fontmap.ini")), allNewMap);
    }
}

// The second record runs into the end of the file after its name: the conversion fails, but the
// slots it filled stay, and the old defaults touch only slots 0 to 5.
TEST(FontProvider, AFailedConversionKeepsItsSlotsAndTheOldDefaultsLeaveSlot6Alone)
{
    TempDir dir;
    linkFont(dir, "ocr-a_2.ttf", "ocr-a_2.ttf");
    linkFont(dir, "arial_2.ttf", "arial.ttf");
    linkFont(dir, "arial_2.ttf", "extra.ttf");
    writeFile(dir.file("fontmap.ini"), "6ocr-a_2.ttf\xFF" "OCR A\xFF" "7extra.ttf\xFF" "Extra");
    FontProvider provider;
    DebugCapture debug;
    provider.init(dir.path);
    EXPECT_NE(debug.text().find("Caught exception while parsing old file format...\r\n"
                                "No font map file found, generating default file\r\n"
                                "resetting to old font files\r\n"),
              std::string::npos);
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "5;arial.ttf\n6;ocr-a_2.ttf\n7;extra.ttf\n");
}

TEST(FontProvider, AnOldNumberAbove50EndsTheConversionNormally)
{
    TempDir dir;
    linkDefaultFonts(dir);
    writeFile(dir.file("fontmap.ini"), "4aribd_2.ttf\xFF" "x\xFF" "c whatever");
    FontProvider provider;
    provider.init(dir.path);
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "4;aribd_2.ttf\n");
}

TEST(FontProvider, OldNumber50WritesItsNameOverTheFontPath)
{
    TempDir dir;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(dir.path);
    std::filesystem::create_directory(dir.file("fonts"));
    writeFile(dir.file("fonts/fontmap.ini"), "bx.ttf\xFF" "x\xFF");
    FontProvider provider;
    provider.init(dir.file("fonts"));
    std::filesystem::current_path(before);
    EXPECT_EQ(provider.getFontPath(), "x.ttf");
    EXPECT_TRUE(std::filesystem::exists(dir.file("x.ttffontmap.ini"))) << "the map is written where the path points";
}

TEST(FontProvider, AFontListConvertsBackThroughTheOldForm)
{
    TempDir first;
    linkDefaultFonts(first);
    FontProvider original;
    original.init(first.path);
    TempDir second;
    linkDefaultFonts(second);
    writeFile(second.file("fontmap.ini"), original.listFonts());
    FontProvider converted;
    converted.init(second.path);
    EXPECT_EQ(readFile(second.file("fontmap.ini")), allNewMap);
}

TEST(FontProvider, ListFontsGivesNumberNameFontNameAndAClosingMark)
{
    TempDir dir;
    FontProvider provider;
    provider.init(dir.path);
    EXPECT_EQ(provider.listFonts(), "\xFF");
    writeFile(dir.file("a.ttf"), "x");
    writeFile(dir.file("abc"), "x");
    provider.addFont(3, "a.ttf");
    provider.addFont(12, "abc");
    EXPECT_EQ(provider.listFonts(), "3a.ttf\xFF" "a\xFF" "<abc\xFF\xFF\xFF");
}

TEST(FontProvider, AddFontTakesFourteenCharactersAndRefusesFifteen)
{
    TempDir dir;
    FontProvider provider;
    provider.init(dir.path);
    DebugCapture debug;
    provider.addFont(9, "fourteen_c.ttf");
    EXPECT_EQ(provider.getFontFile(9), "fourteen_c.ttf");
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "9;fourteen_c.ttf\n");
    provider.addFont(9, "fifteen_ch.ttfx");
    EXPECT_EQ(provider.getFontFile(9), "fourteen_c.ttf");
    EXPECT_EQ(debug.text(), "FontProvider::addFont(): bad file name: fifteen_ch.ttfx");
}

TEST(FontProvider, NumbersOutOfRangeAreRefused)
{
    TempDir dir;
    FontProvider provider;
    provider.init(dir.path);
    struct Case {
        int32_t number;
        const char* expected;
    };
    const Case cases[] = {{50, "50"}, {-1, "-1"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.number);
        {
            DebugCapture debug;
            EXPECT_FALSE(provider.isMapped(c.number));
            EXPECT_EQ(debug.text(), std::string("FontProvider::isMapped(): bad font number: ") + c.expected);
        }
        {
            DebugCapture debug;
            provider.addFont(c.number, "a.ttf");
            EXPECT_EQ(debug.text(), std::string("FontProvider::addFont(): bad font number: ") + c.expected);
        }
        {
            DebugCapture debug;
            provider.removeFont(c.number);
            EXPECT_EQ(debug.text(), std::string("FontProvider::removeFont(): bad font number: ") + c.expected);
        }
        try {
            provider.getFontFile(c.number);
            FAIL() << "no exception";
        } catch (const KT_ERROR::format_error& error) {
            EXPECT_EQ(std::string(error.what()), std::string("font not installed: ") + c.expected);
        }
    }
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "");
}

TEST(FontProvider, AMapThatCannotBeWrittenIsReportedAndTheMappingStays)
{
    TempDir dir;
    FontProvider provider;
    provider.init(dir.path);
    std::filesystem::remove_all(dir.path);
    DebugCapture debug;
    provider.addFont(3, "a.ttf");
    EXPECT_EQ(debug.text(), "Can't open font map file for writing fontmap.ini");
    EXPECT_EQ(provider.getFontFile(3), "a.ttf");
}

TEST(FontProvider, AnUnmappedNumberHasTheEmptyName)
{
    TempDir dir;
    FontProvider provider;
    provider.init(dir.path);
    EXPECT_FALSE(provider.isMapped(49));
    EXPECT_EQ(provider.getFontFile(49), "");
}

TEST(FontProvider, RemoveFontDeletesTheFileAndRewritesTheMap)
{
    TempDir dir;
    writeFile(dir.file("a.ttf"), "x");
    writeFile(dir.file("b.ttf"), "x");
    FontProvider provider;
    provider.init(dir.path);
    provider.addFont(1, "a.ttf");
    provider.addFont(2, "b.ttf");
    provider.removeFont(1);
    EXPECT_FALSE(provider.isMapped(1));
    EXPECT_FALSE(std::filesystem::exists(dir.file("a.ttf")));
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "2;b.ttf\n");
    DebugCapture debug;
    provider.removeFont(1);
    EXPECT_EQ(debug.text(), "FontProvider::removeFont(): mapping already empty; number 1");
}

TEST(FontProvider, ResetFontsForgetsEverythingAndAppliesTheDefaults)
{
    TempDir dir;
    linkDefaultFonts(dir);
    writeFile(dir.file("extra.ttf"), "x");
    writeFile(dir.file("fontmap.ini"), "9;extra.ttf\n");
    FontProvider provider;
    provider.init(dir.path);
    provider.resetFonts();
    EXPECT_FALSE(provider.isMapped(9));
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), allNewMap);
}

TEST(FontProvider, InstallFontWritesTheFileAndMapsIt)
{
    TempDir dir;
    FontProvider provider;
    provider.init(dir.path);
    std::istringstream stream("9new.ttf\xFF" "New font\xFF" "\x05\x00\x00\x00" "abcdABCDEFGH"s);
    provider.installFont(stream);
    EXPECT_EQ(provider.getFontFile(9), "new.ttf");
    EXPECT_EQ(readFile(dir.file("new.ttf")), "ABCDE");
    EXPECT_EQ(readFile(dir.file("fontmap.ini")), "9;new.ttf\n");
}

TEST(FontProvider, InstallFontOverAMappedNumberRemovesTheOldFile)
{
    TempDir dir;
    writeFile(dir.file("old.ttf"), "x");
    FontProvider provider;
    provider.init(dir.path);
    provider.addFont(3, "old.ttf");
    std::istringstream stream("3new.ttf\xFF\xFF\x01\x00\x00\x00\x00\x00\x00\x00Z"s);
    provider.installFont(stream);
    EXPECT_FALSE(std::filesystem::exists(dir.file("old.ttf")));
    EXPECT_EQ(readFile(dir.file("new.ttf")), "Z");
    EXPECT_EQ(provider.getFontFile(3), "new.ttf");
}

TEST(FontProvider, InstallFontThatCannotWriteRaisesAnAutocodeError)
{
    TempDir dir;
    FontProvider provider;
    provider.init(dir.path);
    std::istringstream stream("3no/such.ttf\xFF\xFF\x01\x00\x00\x00\x00\x00\x00\x00Z"s);
    try {
        provider.installFont(stream);
        FAIL() << "no exception";
    } catch (const KT_ERROR::internal_autocode_error& error) {
        EXPECT_EQ(std::string(error.what()), "could not open font file no/such.ttf for writing");
    }
}

TEST(FontProvider, AMissingFileVanishesFromTheMapForGood)
{
    TempDir dir;
    linkDefaultFonts(dir);
    FontProvider first;
    first.init(dir.path);
    std::filesystem::remove(dir.file("gill.ttf"));
    FontProvider second;
    second.init(dir.path);
    EXPECT_FALSE(second.isMapped(1));
    EXPECT_EQ(readFile(dir.file("fontmap.ini")),
              "0;ocr-b_2.ttf\n2;helvet_2.ttf\n3;gothic_2.ttf\n4;aribd_2.ttf\n5;arial_2.ttf\n6;ocr-a_2.ttf\n");
}
