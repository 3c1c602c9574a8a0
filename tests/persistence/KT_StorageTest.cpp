#include "persistence/KT_Storage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "errors/KT_Error.h"
#include "format/TestFormats.h"
#include "graphics/Image.h"
#include "persistence/FileArray.h"
#include "persistence/PrintRegions.h"
#include "persistence/PropertyText.h"
#include "persistence/SimpleFS.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/VirtualSlots.h"

using KT_FMT::KT_Storage;
using KT_INTERFACE::StorageInterface;

namespace {

// A counter of digits printed as text in font 5, and a box; the name is ten characters.
const std::string counterFormat = withControls("COUNTING  ~VCLot|S000000005000000999000000001000000001000000001|0 0000||"
                                               "~#T05000100010000VCLot|10L000") +
                                  boxRecord(10, 200, 40, 20, 2, 2) + "\xff";
const std::string boxFormat = "BOXES     " + boxRecord(10, 100, 40, 20, 2, 2) + "\xff";

std::string readAll(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A store of slots 0 to 9 over a SimpleFS of 4 kB, on a raster of 640 x 608, in a temporary directory.
class StorageTest : public fonttest::FontFixture {
protected:
    void SetUp() override
    {
        fonttest::FontFixture::SetUp();
        PrintRegions::instance().clear();
        previous = std::filesystem::current_path();
        std::filesystem::current_path(dir.path);
    }
    void TearDown() override
    {
        std::filesystem::current_path(previous);
        PrintRegions::instance().clear();
        fonttest::FontFixture::TearDown();
    }
    std::unique_ptr<KT_Storage> makeStorage(bool isVolatile = false)
    {
        return std::make_unique<KT_Storage>(base, &fs, 9, 0, 100, isVolatile, &image, nullptr);
    }
    std::string storeFormat(KT_Storage& storage, const std::string& text)
    {
        std::istringstream in(text);
        std::string out;
        storage.store(out, in);
        return out;
    }
    std::string property(uint32_t slot, const std::string& key)
    {
        return KT_FMT::getPropertyValue(readAll(base + "00" + std::to_string(slot) + "/property.txt"), key);
    }

    fonttest::TempDir dir;
    std::filesystem::path previous;
    std::string base = dir.path + "/slots/";
    SRAM::FileArray array{4096};
    SimpleFS fs{array, 0, 4096, true};
    Image image{640, 608};
};

}  // namespace

TEST(StorageInterface, SlotsStandInTheirOrder)
{
    EXPECT_EQ(slotOf(&StorageInterface::setHysteresisScale), 0);
    EXPECT_EQ(slotOf(&StorageInterface::measurePaint), 2);
    EXPECT_EQ(slotOf(&StorageInterface::getSlotName), 6);
    EXPECT_EQ(slotOf(&StorageInterface::load), 10);
    EXPECT_EQ(slotOf(&StorageInterface::getFormat), 17);
    EXPECT_EQ(slotOf(&StorageInterface::store), 18);
    EXPECT_EQ(slotOf(&StorageInterface::setFormatLength), 25);
    EXPECT_EQ(slotOf(&StorageInterface::getClock), 28);
    EXPECT_EQ(slotOf(&StorageInterface::setProperty), 34);
    EXPECT_EQ(slotOf(&StorageInterface::loadTestFormat), 36);
    EXPECT_EQ(slotOf(&StorageInterface::getHysteresis), 38);
    EXPECT_EQ(slotOf(&StorageInterface::getXOffset), 40);
}

TEST(PropertyText, NewPropertiesAreAppendedOnTheirOwnLineAndOldOnesReplacedWhereTheyStand)
{
    std::string text = "head";
    KT_FMT::setPropertyValue(text, "fmtName", "BOXES     ");
    KT_FMT::setPropertyValue(text, "1.Line", "97");
    EXPECT_EQ(text, "head\r\n<fmtName>BOXES     <\\fmtName>\r\n<1.Line>97<\\1.Line>");
    KT_FMT::setPropertyValue(text, "fmtName", "X");
    EXPECT_EQ(text, "head\r\n<fmtName>X<\\fmtName>\r\n<1.Line>97<\\1.Line>");
    EXPECT_EQ(KT_FMT::getPropertyValue(text, "1.Line"), "97");
    EXPECT_EQ(KT_FMT::getPropertyValue(text, "missing"), "");
    EXPECT_EQ(KT_FMT::getPropertyValue("<a>open only", "a"), "");
}

TEST_F(StorageTest, StoringWritesTheEscapeFileAndItsPropertiesAndLoadsTheFormat)
{
    auto storage = makeStorage();
    storeFormat(*storage, boxFormat);
    EXPECT_TRUE(storage->hasFormat());
    EXPECT_EQ(readAll(base + "000/format.esc"), "\x1b" "F" + boxFormat);
    EXPECT_EQ(property(0, "fmtName"), "BOXES     ");
    EXPECT_EQ(property(0, "1.Line"), "97") << "three rows above the first ink";
    EXPECT_EQ(image.getPixel(10, 100), 1);
    std::string name;
    storage->getSlotName(name, 0);
    EXPECT_EQ(name, "BOXES     ");
    EXPECT_EQ(storage->getFormatFileSize(0), boxFormat.size() + 2);
}

TEST_F(StorageTest, APersistentCounterGoesOnAcrossStoresOfTheSameSlots)
{
    {
        auto storage = makeStorage();
        storeFormat(*storage, counterFormat);
        EXPECT_EQ(storage->getFormat().getResultOfElement("VCLot"), "5");
        storage->getFormat().raisePrinted();
        storage->getFormat().raisePrinted();
        EXPECT_GT(storage->getPersistentSize(0), 0u);
    }
    // A host started anew over the same store and slots.
    SimpleFS mounted(array, 0, 4096, false);
    KT_Storage again(base, &mounted, 9, 0, 100, false, &image, nullptr);
    again.load(0);
    EXPECT_EQ(again.getFormat().getResultOfElement("VCLot"), "7");
    EXPECT_EQ(again.getPersistentSize(0), 20u) << "five numbers of four bytes";
}

TEST_F(StorageTest, ASlotWithoutPropertiesLoadsAsAFirstLoadAndGetsThem)
{
    auto storage = makeStorage();
    std::filesystem::create_directories(base + "003");
    std::ofstream(base + "003/format.esc", std::ios::binary) << "\x1b" "F" << boxFormat;
    storage->load(3);
    EXPECT_TRUE(storage->hasFormat());
    EXPECT_EQ(property(3, "fmtName"), "BOXES     ");
    EXPECT_EQ(property(3, "imgHorOffset"), "0");
    EXPECT_NE(readAll(base + "003/property.txt").find("<print coord><\\print coord>"), std::string::npos);
}

TEST_F(StorageTest, SlotNamesAreCutOrFilledToTenAndAMissingNameIsDamaged)
{
    auto storage = makeStorage();
    std::filesystem::create_directories(base + "001");
    std::filesystem::create_directories(base + "002");
    std::filesystem::create_directories(base + "004");
    std::ofstream(base + "001/property.txt", std::ios::binary) << "<fmtName>SHORT<\\fmtName>";
    std::ofstream(base + "002/property.txt", std::ios::binary) << "<1.Line>3<\\1.Line>";
    std::ofstream(base + "004/property.txt", std::ios::binary) << "<fmtName>MUCH TOO LONG NAME<\\fmtName>";
    const std::pair<uint32_t, const char*> cases[] = {
        {1, "SHORT     "}, {2, "DAMAGED   "}, {4, "MUCH TOO L"}, {5, "No Format!"}, {10, "No Format!"}};
    for (const auto& [slot, expected] : cases) {
        SCOPED_TRACE(slot);
        std::string name;
        storage->getSlotName(name, slot);
        EXPECT_EQ(name, expected);
    }
}

TEST_F(StorageTest, VolatileModeLoadsOnlySlotZeroAndWritesNoFiles)
{
    auto storage = makeStorage(true);
    expectFailure<KT_ERROR::format_error>(
        [&] { storage->load(1); }, "Tried to load a format in slot: 1. Only slot 0 is available in volatile mode.");
    storage->load(0);
    EXPECT_FALSE(storage->hasFormat());
    storeFormat(*storage, boxFormat);
    EXPECT_TRUE(storage->hasFormat());
    EXPECT_FALSE(std::filesystem::exists(base + "000"));
    std::string name;
    storage->getSlotName(name, 0);
    EXPECT_EQ(name, "BOXES     ");
    storage->getSlotName(name, 1);
    EXPECT_EQ(name, "No Format!");
    EXPECT_EQ(storage->getCurrentSlot(), 0u);
    EXPECT_EQ(storage->getMaxSlot(), 0u);
}

TEST_F(StorageTest, PrintCoordinatesAddRegionsInPairsAndIgnoreALoneNumber)
{
    auto storage = makeStorage();
    storeFormat(*storage, boxFormat);
    storage->setProperty("print coord", "10;20;5;", true);
    storage->load(0);
    PrintRegions& regions = PrintRegions::instance();
    ASSERT_EQ(regions.count(), 2u);
    EXPECT_EQ(regions.getLimit(0), 10u);
    EXPECT_EQ(regions.getLimit(1), 20u) << "kept, though it lies above the first print row";
}

TEST_F(StorageTest, ErasingTheCurrentSlotFreesItsBlocksAndDeletesItsDirectory)
{
    auto storage = makeStorage();
    storeFormat(*storage, counterFormat);
    std::array<uint32_t, 6> info{};
    fs.getInfo(info);
    EXPECT_EQ(info[3], 5u);
    storage->eraseCurrent();
    fs.getInfo(info);
    EXPECT_EQ(info[3], 0u);
    EXPECT_TRUE(storage->isSlotEmpty(0));
    EXPECT_FALSE(storage->hasFormat());
}

TEST_F(StorageTest, StoreRawCopiesTheBytesIntoTheSlotAndVolatileModeRefusesIt)
{
    auto storage = makeStorage();
    std::istringstream bytes("abcdefgh");
    EXPECT_TRUE(storage->storeRaw(bytes, 4, 5));
    EXPECT_EQ(readAll(base + "004/format.esc"), "abcde");
    storage->enterVolatile();
    std::istringstream more("xyz");
    EXPECT_FALSE(storage->storeRaw(more, 5, 3));
}

TEST_F(StorageTest, ASlotAboveTheLastFailsToBuildItsPath)
{
    auto storage = makeStorage();
    expectFailure<KT_ERROR::internal_autocode_error>([&] { storage->buildPath(10, "format.esc"); },
                                                     "KT_Storage::buildPath: requested path for illegal slot: 10");
}

TEST_F(StorageTest, UserPropertiesLiveInTheWorkingDirectory)
{
    auto storage = makeStorage();
    std::string value;
    expectFailure<KT_ERROR::kt_exception>([&] { storage->getProperty(value, "a", false); },
                                          "Error opening file user.txt for reading \r\n");
    std::ofstream("user.txt", std::ios::binary) << "";
    storage->setProperty("a", "1", false);
    storage->getProperty(value, "a", false);
    EXPECT_EQ(value, "1");
    EXPECT_EQ(readAll("user.txt"), "\r\n<a>1<\\a>");
}

TEST_F(StorageTest, AFreshlyFormattedStoreDeletesEveryOldPropertyFile)
{
    std::filesystem::create_directories(base + "002");
    std::ofstream(base + "002/property.txt") << "<sram Addr>old<\\sram Addr>";
    std::ofstream(base + "002/format.esc") << "kept";
    auto storage = makeStorage();
    EXPECT_FALSE(std::filesystem::exists(base + "002/property.txt"));
    EXPECT_TRUE(std::filesystem::exists(base + "002/format.esc"));
}

TEST_F(StorageTest, HysteresisOfOneRegionTakesEveryFourthRow)
{
    auto storage = makeStorage();
    storeFormat(*storage, boxFormat);
    PrintRegions::instance().add(100, 107);
    std::vector<int32_t> out;
    storage->getHysteresis(out, false);
    std::vector<int32_t> profile;
    storage->getKTFormat().hysteresisProfile(profile, 100, 107);
    EXPECT_EQ(out, (std::vector<int32_t>{profile[0], profile[4]}));
    EXPECT_EQ(hysteresisData, (std::vector<uint32_t>{0}));
}

TEST_F(StorageTest, OnABlankRasterWithoutRegionsTheHysteresisIsTheOneValueOfRowZero)
{
    auto storage = makeStorage();
    std::vector<int32_t> out;
    storage->getHysteresis(out, false);
    EXPECT_EQ(out.size(), 1u);
}

TEST_F(StorageTest, AFailedStoreClearsTheFormatAndLeavesThePartlyWrittenFileBehind)
{
    auto storage = makeStorage();
    // A box, then a counter whose step of 0 fails.
    const std::string broken = "BROKEN    " + boxRecord(10, 100, 40, 20, 2, 2) +
                               withControls("~VCLot|S000000005000000999000000000000000001000000001|0 0000||") + "\xff";
    expectFailure<KT_ERROR::illegal_content>([&] { storeFormat(*storage, broken); },
                                             "counter: step value must not be zero");
    EXPECT_FALSE(storage->hasFormat());
    EXPECT_EQ(storage->getKTFormat().getName(), "No Format!");
    EXPECT_TRUE(std::filesystem::exists(base + "000/format.esc"));
    EXPECT_FALSE(std::filesystem::exists(base + "000/property.txt"));
}

TEST_F(StorageTest, ErasingAnotherSlotLeavesTheLoadedFormatAndEraseAllStartsAfresh)
{
    auto storage = makeStorage();
    storage->load(2);
    storeFormat(*storage, counterFormat);
    storage->load(3);
    storeFormat(*storage, boxFormat);
    storage->eraseSlot(2);
    EXPECT_TRUE(storage->isSlotEmpty(2));
    EXPECT_TRUE(storage->hasFormat());
    EXPECT_EQ(storage->getPersistentSize(2), 0u);
    storage->eraseAll();
    EXPECT_FALSE(storage->hasFormat());
    EXPECT_TRUE(storage->isSlotEmpty(3));
    EXPECT_TRUE(std::filesystem::is_directory(base));
    EXPECT_TRUE(fs.isFreshlyFormatted());
}

TEST_F(StorageTest, SingleSlotModeStoresEverythingInSlotZero)
{
    auto storage = makeStorage();
    storage->load(4);
    storage->setSingleSlot(true);
    storeFormat(*storage, boxFormat);
    EXPECT_EQ(storage->getCurrentSlot(), 0u);
    EXPECT_FALSE(storage->isSlotEmpty(0));
    EXPECT_TRUE(storage->isSlotEmpty(4));
    std::istringstream bytes("raw");
    storage->storeRaw(bytes, 7, 3);
    EXPECT_TRUE(storage->isSlotEmpty(7));
    EXPECT_EQ(readAll(base + "000/format.esc"), "raw");
}

TEST_F(StorageTest, LeavingVolatileModeLoadsTheCurrentSlotAgain)
{
    auto storage = makeStorage();
    storeFormat(*storage, boxFormat);
    storage->enterVolatile();
    EXPECT_FALSE(storage->hasFormat());
    EXPECT_TRUE(storage->isVolatile());
    storage->leaveVolatile();
    EXPECT_FALSE(storage->isVolatile());
    EXPECT_TRUE(storage->hasFormat());
    std::string name;
    storage->getFormatName(name);
    EXPECT_EQ(name, "BOXES     ");
}

TEST_F(StorageTest, TheXOffsetMovesTheDrawablesAndIsKeptAsAProperty)
{
    auto storage = makeStorage();
    std::string offset;
    storage->getXOffset(offset);
    EXPECT_EQ(offset, "0") << "no format loaded";
    EXPECT_FALSE(storage->setXOffset(32));
    storeFormat(*storage, boxFormat);
    EXPECT_TRUE(storage->setXOffset(32));
    EXPECT_EQ(image.getPixel(42, 100), 1);
    EXPECT_EQ(image.getPixel(10, 100), 0);
    storage->getXOffset(offset);
    EXPECT_EQ(offset, "32");
    KT_AC::drawableXOffset = 0;
}

TEST_F(StorageTest, TheFormatFileAndItsSizesAreThereForTheLoadedSlotOnly)
{
    auto storage = makeStorage();
    storeFormat(*storage, counterFormat);
    std::string file;
    storage->readFormatFile(file, 0);
    EXPECT_EQ(file, "\x1b" "F" + counterFormat);
    EXPECT_EQ(storage->getFormatFileSizeCurrent(), counterFormat.size() + 2);
    EXPECT_EQ(storage->getPersistentSizeCurrent(), 20u);
    storage->enterVolatile();
    EXPECT_EQ(storage->getFormatFileSizeCurrent(), 0u);
    EXPECT_EQ(storage->getPersistentSizeCurrent(), 0u);
}

TEST_F(StorageTest, TheFirstPrintRowIsThreeRowsAboveTheInkOrZeroForAnEmptyRaster)
{
    auto storage = makeStorage();
    EXPECT_EQ(storage->getFirstPrintRow(), 0);
    storeFormat(*storage, boxFormat);
    EXPECT_EQ(storage->getFirstPrintRow(), 97);
}

TEST_F(StorageTest, ReversedHysteresisRunsFromThreeRowsBelowTheInkUpToItsFirstRow)
{
    auto storage = makeStorage();
    storeFormat(*storage, boxFormat);
    std::vector<int32_t> out;
    storage->getHysteresis(out, true);
    std::vector<int32_t> profile;
    storage->getKTFormat().hysteresisProfile(profile, 122, 100);
    std::vector<int32_t> everyFourth;
    for (size_t i = 0; i < profile.size(); i += 4)
        everyFourth.push_back(profile[i]);
    EXPECT_EQ(out, everyFourth);
    std::vector<uint16_t> counts;
    EXPECT_EQ(storage->getHistogram(counts, false), 40u);
    EXPECT_EQ(counts.size(), 23u) << "rows 97 to 119";
}

TEST_F(StorageTest, FilesThatCantBeOpenedFailWithTheirTexts)
{
    auto storage = makeStorage();
    // A slot whose directory lacks the escape file.
    std::filesystem::create_directories(base + "005");
    expectFailure<KT_ERROR::internal_error>([&] { storage->load(5); },
                                            "could not open file " + base + "005/format.esc for reading");
    EXPECT_FALSE(storage->hasFormat());
    std::string out;
    expectFailure<KT_ERROR::kt_exception>([&] { storage->readFormatFile(out, 5); },
                                          "error opening file " + base + "005/format.esc");
    // A directory where the user properties should be counts as no file.
    std::filesystem::create_directories("user.txt");
    expectFailure<KT_ERROR::kt_exception>([&] { storage->setProperty("a", "1", false); },
                                          "Error opening file user.txt for reading \r\n");
}

TEST_F(StorageTest, ATestFormatIsLoadedWithTheStoresLengthAndErasingItLoadsTheSlotAgain)
{
    auto storage = makeStorage();
    storeFormat(*storage, boxFormat);
    storage->setFormatLength(200);
    EXPECT_EQ(KT_FMT::testFormatLength, 200u);
    image.clear();
    storage->loadTestFormat(6, {}, {});
    EXPECT_TRUE(storage->isTestFormat());
    EXPECT_TRUE(storage->hasFormat());
    EXPECT_EQ(image.getLastUsedRow(), 199) << "pattern 6 blackens the rows of the length";
    std::string name, offset;
    storage->getFormatName(name);
    EXPECT_EQ(name, "BLOWN PIX.");
    storage->getXOffset(offset);
    EXPECT_EQ(offset, "0");
    EXPECT_FALSE(storage->setXOffset(8));
    EXPECT_EQ(storage->getPersistentSizeCurrent(), 0u);
    storage->eraseCurrent();
    EXPECT_FALSE(storage->isTestFormat());
    storage->getFormatName(name);
    EXPECT_EQ(name, "BOXES     ") << "the slot's format is back";
    KT_FMT::testFormatLength = 100;
}
