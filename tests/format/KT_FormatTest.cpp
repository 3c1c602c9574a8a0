#include "format/KT_Format.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "autocode/AC_Date.h"
#include "autocode/DateClock.h"
#include "errors/KT_Error.h"
#include "format/FieldReaders.h"
#include "graphics/Image.h"
#include "tests/autocode/ClockState.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/support/ExpectFailure.h"

using KT_FMT::KT_Format;

namespace {

struct Parsed {
    std::string error;      // what() of the exception, or empty
    bool streamFailure = false;
    std::streamoff consumed = 0;
};

Parsed parseBytes(KT_Format& format, const std::string& bytes, unsigned mode = 0)
{
    std::istringstream in(bytes);
    Parsed result;
    try {
        format.parse(in, nullptr, mode);
    } catch (const KT_ERROR::kt_exception& error) {
        result.error = error.what();
    } catch (const std::ios_base::failure&) {
        result.streamFailure = true;
    }
    EXPECT_TRUE(in.good()) << "the caller's stream keeps its state";
    result.consumed = in.tellg();
    return result;
}

class FormatTest : public testing::Test {
protected:
    Image image{64, 8};
    KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(FormatTest, ANewFormatIsEmptyAndNamedNoFormat)
{
    EXPECT_TRUE(format.isEmpty());
    EXPECT_EQ(format.getName(), "No Format!");
    EXPECT_EQ(format.getHysteresisScale(), 0u);
    EXPECT_EQ(format.getImage(), &image);
    EXPECT_EQ(format.getBackground(), nullptr);
    EXPECT_EQ(format.getFileSystem(), nullptr);
}

TEST_F(FormatTest, NameAndEndMarkMakeAnEmptyFormatThatKeepsAllTenBytes)
{
    const Parsed parsed = parseBytes(format, std::string("A\x1b\x01 ;\xfe  z9", 10) + "\xff");
    EXPECT_EQ(parsed.error, "");
    EXPECT_FALSE(parsed.streamFailure);
    EXPECT_FALSE(format.isEmpty());
    EXPECT_EQ(format.getName(), std::string("A\x1b\x01 ;\xfe  z9", 10));
    EXPECT_EQ(image.getFirstUsedRow(), 0);
    EXPECT_EQ(image.getLastUsedRow(), 0);
}

TEST_F(FormatTest, TheParserReadsNothingBehindTheEndMark)
{
    const Parsed parsed = parseBytes(format, "NAME      \xff\x1bQ00000");
    EXPECT_EQ(parsed.error, "");
    EXPECT_EQ(parsed.consumed, 11);
}

TEST_F(FormatTest, TheEndOfInputBehindTheNameIsAStreamFailure)
{
    const Parsed parsed = parseBytes(format, "NAME_ONLY!");
    EXPECT_TRUE(parsed.streamFailure);
    EXPECT_EQ(parsed.error, "");
}

TEST_F(FormatTest, AShortNameIsAStreamFailure)
{
    EXPECT_TRUE(parseBytes(format, "SHORT").streamFailure);
}

TEST_F(FormatTest, AStrayByteIsNamedInHexAndAsCharacter)
{
    struct Case {
        std::string byte;
        std::string text;
    };
    const Case cases[] = {
        {"A", "no termination character found for format end, but ASCII 0x41 (A)"},
        {"\n", "no termination character found for format end, but ASCII 0x0a (\n)"},
        {"\xab", "no termination character found for format end, but ASCII 0xab (\xab)"},
        // The text is a C string to its readers, so a zero byte ends it.
        {std::string(1, '\0'), "no termination character found for format end, but ASCII 0x00 ("},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const Parsed parsed = parseBytes(format, "NAME      " + c.byte + "\xff");
        EXPECT_EQ(parsed.error, c.text);
        EXPECT_EQ(parsed.consumed, 11);
    }
    EXPECT_THROW(
        {
            std::istringstream in("NAME      A");
            format.parse(in, nullptr, 0);
        },
        KT_ERROR::parse_time_error);
}

TEST_F(FormatTest, DroppedRecordsTakeTheirFixedByteCounts)
{
    EXPECT_EQ(parseBytes(format, "NAME      \x1b" "D\xff\xff\x1bS\x1b\x1b\x1b\x1bX12345\xff").error, "");
    // ESC X that leaves one byte too many hands it to the end-mark test; one too few eats the end mark.
    const Parsed tooMany = parseBytes(format, "NAME      \x1bX123456\xff");
    EXPECT_EQ(tooMany.error, "no termination character found for format end, but ASCII 0x36 (6)");
    EXPECT_EQ(tooMany.consumed, 18);
    const Parsed tooFew = parseBytes(format, "NAME      \x1bX1234\xff");
    EXPECT_TRUE(tooFew.streamFailure);
    EXPECT_EQ(tooFew.consumed, 17);
}

TEST_F(FormatTest, UnknownSelectorsSkipSilentlyToTheNextEscape)
{
    EXPECT_EQ(parseBytes(format, "NAME      \x1b#Qlost bytes\x1bVQmore\x1b" "D..\xff").error, "");
}

TEST_F(FormatTest, AnUnknownSelectorSwallowsAnEndMarkBeforeTheNextEscape)
{
    EXPECT_TRUE(parseBytes(format, "NAME      \x1b#Q\xff").streamFailure);
    EXPECT_TRUE(parseBytes(format, "NAME      \x1bVQ\xff").streamFailure);
}

TEST_F(FormatTest, AnUnknownTopLevelByteReadsToTheEnd)
{
    const std::string bytes = "NAME      \x1bQ00000\xff\x1b" "D..\xff";
    const Parsed parsed = parseBytes(format, bytes);
    EXPECT_TRUE(parsed.streamFailure);
    EXPECT_FALSE(format.isEmpty());
}

TEST_F(FormatTest, UnknownBytesBeyondTheTableReadToTheEnd)
{
    for (char selector : {'"', 'Y', 'Z', '\x7f', '\xff', 'a'}) {
        SCOPED_TRACE(static_cast<int>(selector));
        EXPECT_TRUE(parseBytes(format, std::string("NAME      \x1b") + selector + "\xff").streamFailure);
    }
}

TEST_F(FormatTest, APersistentParseWithoutFileSystemIsRefused)
{
    for (unsigned mode : {1u, 2u}) {
        const Parsed parsed = parseBytes(format, "NAME      \xff", mode);
        EXPECT_EQ(parsed.error, "can't create a persistent format without sram file system");
        EXPECT_EQ(parsed.consumed, 0);
        EXPECT_TRUE(format.isEmpty());
    }
    EXPECT_EQ(parseBytes(format, "NAME      \xff", 3).error, "");
}

TEST_F(FormatTest, AFailedParseLeavesTheFormatNeitherEmptyNorLoaded)
{
    parseBytes(format, "NAME      A");
    EXPECT_FALSE(format.isEmpty());
    EXPECT_EQ(format.getName(), "NAME      ");
    format.clear();
    EXPECT_TRUE(format.isEmpty());
    EXPECT_EQ(format.getName(), "No Format!");
}

TEST_F(FormatTest, ClearWipesTheImagesOfALoadedFormatOnly)
{
    Image background(64, 8);
    KT_Format withBackground(nullptr, &image, &background);
    image.setPixel(1, 1, 1);
    background.setPixel(2, 2, 1);
    withBackground.clear();
    EXPECT_EQ(image.getPixel(1, 1), 1) << "an empty format leaves the images alone";

    std::istringstream in("NAME      \xff");
    withBackground.parse(in, nullptr, 0);
    image.setPixel(1, 1, 1);
    background.setPixel(2, 2, 1);
    withBackground.clear();
    EXPECT_EQ(image.getPixel(1, 1), 0);
    EXPECT_EQ(background.getPixel(2, 2), 0);
}

TEST_F(FormatTest, ParsingAgainClearsFirst)
{
    parseBytes(format, "FIRST     \xff");
    image.setPixel(3, 3, 1);
    parseBytes(format, "SECOND    \xff");
    EXPECT_EQ(format.getName(), "SECOND    ");
    EXPECT_EQ(image.getPixel(3, 3), 0);
}

TEST_F(FormatTest, GraphicFileNamesCountUp)
{
    EXPECT_EQ(format.nextGraphicsFileName(), "gfx0.raw");
    EXPECT_EQ(format.nextGraphicsFileName(), "gfx1.raw");
}

TEST_F(FormatTest, TheHysteresisScaleIsKept)
{
    format.setHysteresisScale(7);
    EXPECT_EQ(format.getHysteresisScale(), 7u);
}

namespace {

class KT_FormatElements : public testing::Test {
protected:
    void parseEmptyFormat()
    {
        std::istringstream in("EMPTY     \xff");
        format.parse(in, nullptr, 0);
    }

    std::string readFixedField(const std::string& text)
    {
        std::istringstream in("F" + text + "\v");
        return KT_FMT::readContentField(in, format);
    }

    std::vector<std::string> journal;  // outlives the elements that write into it
    Image image{64, 8};
    KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(KT_FormatElements, StartsWithAnEmptyCollection)
{
    EXPECT_EQ(format.getElements().size(), 0u);
}

TEST_F(KT_FormatElements, ParsingAgainRestartsGeneratedIds)
{
    parseEmptyFormat();
    EXPECT_EQ(readFixedField("a"), "&0");
    EXPECT_EQ(readFixedField("b"), "&1");
    parseEmptyFormat();
    EXPECT_EQ(format.getElements().size(), 0u);
    EXPECT_EQ(readFixedField("c"), "&0");
    EXPECT_EQ(format.getElements().getElement("&0").getResult(), "c");
}

TEST_F(KT_FormatElements, ClearEmptiesTheCollection)
{
    parseEmptyFormat();
    readFixedField("a");
    format.clear();
    EXPECT_TRUE(format.isEmpty());
    EXPECT_EQ(format.getElements().size(), 0u);
    EXPECT_EQ(format.getElements().generateId(), "&0");
}

TEST_F(KT_FormatElements, UpdateTellsEveryElementItWasPainted)
{
    format.getElements().addElement("Xa", std::make_unique<ProbeElement>("", &journal, "Xa"));
    format.getElements().addElement("Cb", std::make_unique<ProbeElement>("", &journal, "Cb"));
    format.update();
    EXPECT_EQ(journal, (std::vector<std::string>{"Xa update 0 0", "Cb update 0 0"}));
}

namespace {

const std::string boxAt0 = "\x1bL000000000000008000040000000000";  // 8 x 4 at 0, 0
const std::string invertAt0 = "\x1b#I00000000020000100002";     // 8 x 2 at 0, 2

std::string pixelRow(Image& image, int32_t y, int32_t width)
{
    std::string row;
    for (int32_t x = 0; x < width; ++x)
        row += image.getPixel(x, y) ? '#' : '.';
    return row;
}

}  // namespace

TEST(KT_FormatPainting, WithABackgroundStaticsGoThereAndTheImageGetsACopy)
{
    Image image(64, 8);
    Image background(64, 8);
    KT_Format format(nullptr, &image, &background);
    std::istringstream in("BACKGROUND" + invertAt0 + boxAt0 + "\xff");
    format.parse(in, nullptr, 0);
    EXPECT_EQ(image.getBackground(), &background);
    EXPECT_EQ(pixelRow(background, 2, 10), "########..");
    EXPECT_EQ(pixelRow(image, 1, 10), "########..");
    EXPECT_EQ(pixelRow(image, 2, 10), "..........") << "the inverted area works on the main image";
    EXPECT_EQ(pixelRow(image, 4, 10), "..........");
    EXPECT_EQ(image.getFirstUsedRow(), 0);
    EXPECT_EQ(image.getLastUsedRow(), 3) << "inverting widens the band even where ink went";
}

TEST(KT_FormatPainting, ABackgroundOfAnotherSizeFailsAfterTheStaticStage)
{
    Image image(64, 8);
    Image background(64, 9);
    KT_Format format(nullptr, &image, &background);
    std::istringstream in("BACKGROUND" + boxAt0 + "\xff");
    expectFailure<KT_ERROR::internal_error>([&] { format.parse(in, nullptr, 0); },
                                            "background image must have same dimensions");
    EXPECT_EQ(pixelRow(background, 0, 10), "########..");
    EXPECT_EQ(pixelRow(image, 0, 10), "..........");
}

TEST(KT_FormatPainting, GraphicsGoIntoTheBackgroundWhenThereIsOne)
{
    Image image(64, 8);
    Image background(64, 8);
    KT_Format format(nullptr, &image, &background);
    std::istringstream in("BACKGROUND\x1bG00000000010000100001#\xf0\xff");
    format.parse(in, nullptr, 0);
    EXPECT_EQ(pixelRow(background, 1, 8), "####....");
    EXPECT_EQ(pixelRow(image, 1, 8), "####....");
}

TEST(KT_FormatPainting, AFormatWithoutDrawablesLeavesTheRasterBlank)
{
    Image image(64, 8);
    KT_Format format(nullptr, &image, nullptr);
    std::istringstream in("NOTHING   \xff");
    format.parse(in, nullptr, 0);
    for (int32_t y = 0; y < 8; ++y)
        EXPECT_EQ(pixelRow(image, y, 64), std::string(64, '.'));
    EXPECT_EQ(image.getFirstUsedRow(), 0);
    EXPECT_EQ(image.getLastUsedRow(), 0);
}

TEST(KT_FormatPainting, TheFirstParseDoesNotClearTheRaster)
{
    Image image(64, 8);
    image.setPixel(5, 5, 1);
    KT_Format format(nullptr, &image, nullptr);
    std::istringstream in("NOTHING   \xff");
    format.parse(in, nullptr, 0);
    EXPECT_EQ(image.getPixel(5, 5), 1) << "clearing an empty format leaves the images alone";
}

TEST(KT_FormatPainting, ParsingTellsTheElementsTheyWerePainted)
{
    std::vector<std::string> journal;
    Image image(64, 8);
    KT_Format format(nullptr, &image, nullptr);
    std::istringstream in("PAINTED   \xff");
    format.parse(in, nullptr, 0);
    format.getElements().addElement("Xa", std::make_unique<ProbeElement>("", &journal, "Xa"));
    format.update();
    EXPECT_EQ(journal, (std::vector<std::string>{"Xa update 0 0"}));
}

TEST(KT_FormatMeasuring, ModeOneRepaintsTheVariablesAHundredTimesAndSaves)
{
    std::vector<std::string> journal;
    Image image(3200, 1000);
    KT_Format format(nullptr, &image, nullptr);
    std::istringstream in("MEASURE   " + boxAt0 + invertAt0 + "\xff");
    format.parse(in, nullptr, 0);
    format.getElements().addElement("Xa", std::make_unique<ProbeElement>("", &journal, "Xa"));
    const std::string path = testing::TempDir() + "measure1.bmp";
    format.measurePaint(1, 7, path);
    EXPECT_EQ(journal.size(), 100u);
    EXPECT_EQ(journal.front(), "Xa update 1 0");
    EXPECT_EQ(pixelRow(image, 0, 10), "..........") << "the box was erased and only the variables repainted";
    EXPECT_EQ(pixelRow(image, 2, 10), "########..");
    Image saved(3200, 1000);
    ASSERT_TRUE(saved.loadBitmap(0, 0, path, false));
    EXPECT_EQ(pixelRow(saved, 2, 10), "########..");
    std::remove(path.c_str());
}

TEST(KT_FormatMeasuring, ModeTwoRepaintsEverythingTheLastTimeOnAClearedRaster)
{
    std::vector<std::string> journal;
    Image image(3200, 1000);
    KT_Format format(nullptr, &image, nullptr);
    std::istringstream in("MEASURE   " + boxAt0 + "\xff");
    format.parse(in, nullptr, 0);
    format.getElements().addElement("Xa", std::make_unique<ProbeElement>("", &journal, "Xa"));
    image.setPixel(100, 100, 1);
    format.measurePaint(2, 3, "");
    EXPECT_EQ(journal, (std::vector<std::string>{"Xa update 0 0", "Xa update 1 0", "Xa update 0 0", "Xa update 1 0",
                                                 "Xa update 0 0", "Xa update 1 0"}));
    EXPECT_EQ(image.getPixel(100, 100), 0);
    EXPECT_EQ(pixelRow(image, 0, 10), "########..");
}

TEST(KT_FormatMeasuring, OtherModesDoNothing)
{
    Image image(64, 8);
    KT_Format format(nullptr, &image, nullptr);
    image.setPixel(1, 1, 1);
    format.measurePaint(0, 3, "");
    format.measurePaint(3, 3, "");
    EXPECT_EQ(image.getPixel(1, 1), 1);
}

TEST_F(FormatTest, ThePaintAfterParsingReadsTheClock)
{
    const ClockState keep;
    KT_AC::now = 0;
    const auto before = static_cast<int64_t>(std::time(nullptr));
    EXPECT_EQ(parseBytes(format, "CLOCK     \xff").error, "");
    EXPECT_GE(KT_AC::now, before);
    EXPECT_LE(KT_AC::now, static_cast<int64_t>(std::time(nullptr)));
}

TEST_F(FormatTest, DateAndFormulaRecordsAddTheirElements)
{
    const ClockState keep;
    const Parsed parsed = parseBytes(format, "DATES     \x1bVDd\v17a\x03\vF001000000"
                                             "\x1bVFsum\v000000000F12\v+F30\v\v\xff");
    EXPECT_EQ(parsed.error, "");
    const auto& date = dynamic_cast<const KT_AC::AC_Date&>(format.getElements().getElement("Dd"));
    EXPECT_EQ(date.getResult(), "a");
    EXPECT_TRUE(date.isUnchanged()) << "the paint after parsing took the snapshot";
    EXPECT_EQ(format.getElements().getElement("Fsum").getResult(), "42");
}

TEST_F(FormatTest, ADateThatCannotPrintFailsWhenThePaintIsAnnounced)
{
    const Parsed parsed = parseBytes(format, "DATES     \x1bVDd\v60\vF000000000\xff");
    EXPECT_EQ(parsed.error, "unexpected date component 60");
    EXPECT_EQ(parsed.consumed, 29) << "the whole format was read first";
}

TEST_F(FormatTest, LegacyRecordsAreConvertedOnTheWayIn)
{
    // Without its offset unit the converted date takes the ESC of the text record as one.
    const Parsed parsed = parseBytes(format, "LEGACY    \x1bT050012700326" "0600" "301\v*001001xy\xff");
    EXPECT_EQ(parsed.error, "no termination character found for format end, but ASCII 0x23 (#)");
    // The offset 1 + 1 became the text "2", which as a single digit is worth nothing.
    EXPECT_EQ(format.getElements().getElement("F_rpl_old00").getResult(), "2");
    EXPECT_EQ(format.getElements().getElement("F_rpl_old00").toNumber(), 0);
    const auto& date = dynamic_cast<const KT_AC::AC_Date&>(format.getElements().getElement("D_rpl_old01"));
    EXPECT_EQ(date.getOffsetSource(), "F_rpl_old00");
    EXPECT_EQ(date.getVariableOffsetIndex(), static_cast<uint32_t>(0x1b - '-'));
}

TEST_F(FormatTest, AClockTickAndEachMeasuringPassReadTheClock)
{
    const ClockState keep;
    EXPECT_EQ(parseBytes(format, "CLOCK     \xff").error, "");
    const auto before = static_cast<int64_t>(std::time(nullptr));
    KT_AC::now = 0;
    format.clockTick();
    EXPECT_GE(KT_AC::now, before);
    KT_AC::now = 0;
    format.measurePaint(2, 1, "");
    EXPECT_GE(KT_AC::now, before);
    EXPECT_LE(KT_AC::now, static_cast<int64_t>(std::time(nullptr)));
}

TEST(KT_FormatHistogram, CountsTheInkOfTheMainImageNotOfTheBackground)
{
    Image image(64, 8);
    Image background(64, 8);
    KT_Format format(nullptr, &image, &background);
    image.rectangle(0, 2, 5, 1, 1);
    image.rectangle(0, 3, 9, 1, 1);
    background.rectangle(0, 4, 64, 1, 1);
    std::vector<uint16_t> counts{7};
    EXPECT_EQ(format.histogram(counts, 4, 1), 9u);
    EXPECT_EQ(counts, (std::vector<uint16_t>{7, 0, 9, 5, 0}));
}

TEST_F(FormatTest, AnOldRecordInTheNameIsConvertedLikeAnyOther)
{
    // The old text record becomes a formula record and a text record: the name ends in the new ESC V,
    // and the F of the formula is the byte that follows it. Read raw, the byte would be the '0' of the font.
    const Parsed parsed = parseBytes(format, "NAMEABCD\x1bT" "050012700326" "06" "00" "0Fab\v\xff");
    EXPECT_EQ(format.getName(), "NAMEABCD\x1bV");
    EXPECT_EQ(parsed.error, "no termination character found for format end, but ASCII 0x46 (F)");
}
