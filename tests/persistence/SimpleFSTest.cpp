#include "persistence/SimpleFS.h"

#include "errors/KT_Error.h"
#include "persistence/FileArray.h"
#include "tests/persistence/ArrayWords.h"
#include "tests/persistence/SimpleFSTestSupport.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <typeinfo>
#include <vector>

using namespace KT_ERROR;
using SRAM::FileArray;

namespace {

using Bytes = std::vector<uint8_t>;

Bytes snapshot(FileArray& array)
{
    Bytes bytes(array.size());
    array.readBlock(bytes.data(), array.size(), 0);
    return bytes;
}

// A file system of 8 blocks at 64 to 127, or of 120 blocks for the larger cases.
constexpr uint32_t table = 64;

Bytes blockAt(FileArray& array, uint32_t block)
{
    Bytes bytes(8);
    array.readBlock(bytes.data(), 8, table + 8 * block);
    return bytes;
}

void setBlock(FileArray& array, uint32_t block, const Bytes& bytes)
{
    array.writeBlock(bytes.data(), 8, table + 8 * block);
}

uint32_t usedBlocksOf(SimpleFS& fs)
{
    std::array<uint32_t, 6> info{};
    fs.getInfo(info);
    return info[3];
}

uint32_t cursorOf(SimpleFS& fs)
{
    std::array<uint32_t, 6> info{};
    fs.getInfo(info);
    return info[5];
}


std::string checkText(SimpleFS& fs, uint32_t* result = nullptr, SimpleFSCheckReport* report = nullptr)
{
    std::ostringstream out;
    const uint32_t total = fs.check(report, false, &out);
    if (result != nullptr)
        *result = total;
    return out.str();
}

// Runs an operation that must throw exactly the class E with the text given.
template <class E, class Operation>
void expectFailure(Operation operation, const std::string& text)
{
    try {
        operation();
        ADD_FAILURE() << "no exception, expected: " << text;
    } catch (const E& e) {
        EXPECT_EQ(typeid(e), typeid(E));
        EXPECT_EQ(std::string(e.what()), text);
    }
}

}  // namespace

// ---- Layout, format and mount ----

TEST(SimpleFS, ARegionOf128BytesHoldsEightBlocksFrom64ToItsEnd)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    std::array<uint32_t, 6> info{};
    EXPECT_EQ(fs.getInfo(info), 24u);
    EXPECT_EQ(info, (std::array<uint32_t, 6>{0, 128, 8, 0, 64, 7}));
    const uint32_t header[] = {0xA37F7B0E, 0, 128, 8, 0, 64, 7};
    for (uint32_t i = 0; i < 7; ++i)
        EXPECT_EQ(wordAt(array, 4 * i), header[i]) << "word " << i;
    EXPECT_EQ(array.readByte(0), 0x0E);
    EXPECT_EQ(array.readByte(3), 0xA3);
}

TEST(SimpleFS, TheBlockTableLiesBehindTheHeaderOnAMultipleOfEight)
{
    struct Case {
        uint32_t start, size, blockCount, blockTable;
    };
    const Case cases[] = {
        {0, 128, 8, 64},    {3, 128, 8, 64},     {7, 128, 8, 64},      {8, 128, 8, 72},
        {100, 200, 17, 160}, {0, 135, 8, 64},   {0, 136, 9, 64},      {1000, 4096, 504, 1064},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "start " << c.start << " size " << c.size);
        FileArray array(c.start + c.size);
        SimpleFS fs(array, c.start, c.size, true);
        std::array<uint32_t, 6> info{};
        fs.getInfo(info);
        EXPECT_EQ(info, (std::array<uint32_t, 6>{c.start, c.size, c.blockCount, 0, c.blockTable, c.blockCount - 1}));
        EXPECT_LE(c.blockTable + 8 * c.blockCount, c.start + c.size);
        EXPECT_EQ(wordAt(array, c.start + 12), c.blockCount);
        EXPECT_EQ(wordAt(array, c.start + 20), c.blockTable);
    }
}

TEST(SimpleFS, FormatClearsItsRegionBehindTheHeaderAndNothingElse)
{
    FileArray array(300);
    for (uint32_t i = 0; i < 300; ++i)
        array.writeByte(i, 0xEE);
    SimpleFS fs(array, 50, 200, true);
    for (uint32_t i = 0; i < 50; ++i)
        ASSERT_EQ(array.readByte(i), 0xEE) << "at " << i;
    for (uint32_t i = 78; i < 250; ++i)
        ASSERT_EQ(array.readByte(i), 0) << "at " << i;
    for (uint32_t i = 250; i < 300; ++i)
        ASSERT_EQ(array.readByte(i), 0xEE) << "at " << i;
    EXPECT_EQ(fs.check(nullptr, false, nullptr), 0u);
}

TEST(SimpleFS, FormatRefusesAnArrayTooSmallForTheRegion)
{
    FileArray array(199);
    for (uint32_t i = 0; i < 199; ++i)
        array.writeByte(i, 0x42);
    const Bytes before = snapshot(array);
    expectFailure<SFS_Exception>([&] { SimpleFS fs(array, 72, 128, true); },
                                 "physical storage too small for demanded size 200");
    // The array's check comes first, even for a region that would be too small anyway.
    expectFailure<SFS_Exception>([&] { SimpleFS fs(array, 190, 100, true); },
                                 "physical storage too small for demanded size 290");
    expectFailure<SFS_Exception>([&] { SimpleFS fs(array, 0xFFFFFF00, 0x200, true); },
                                 "physical storage too small for demanded size 4294967552");
    EXPECT_EQ(snapshot(array), before);
}

TEST(SimpleFS, FormatRefusesARegionBelow128Bytes)
{
    FileArray array(200);
    const Bytes before = snapshot(array);
    for (uint32_t size : {0u, 56u, 127u}) {
        SCOPED_TRACE(size);
        expectFailure<SFS_FSCannotBeCreatedException>([&] { SimpleFS fs(array, 0, size, true); },
                                                       "file system cannot be created, storage too small");
    }
    EXPECT_EQ(snapshot(array), before);
    SimpleFS fs(array, 0, 128, true);
}

TEST(SimpleFS, MountingAfterFormatGivesTheSameNumbers)
{
    FileArray array(1100);
    std::array<uint32_t, 6> formatted{};
    {
        SimpleFS fs(array, 76, 1024, true);
        createText(fs, "counter");
        createText(fs, "");
        fs.getInfo(formatted);
    }
    SimpleFS mounted(array, 76, 1024, false);
    std::array<uint32_t, 6> info{};
    mounted.getInfo(info);
    EXPECT_EQ(info, formatted);
    EXPECT_EQ(info[3], 3u);
    EXPECT_EQ(info[5], 2u);
    EXPECT_FALSE(mounted.isFreshlyFormatted());
}

TEST(SimpleFS, MountFailsAsTheHeaderTells)
{
    struct Case {
        uint32_t offset;
        uint32_t value;
        uint32_t askedSize;
        const char* text;
        int kind;  // 0 restored, 1 created
    };
    const Case cases[] = {
        {0, 0, 128, "SimpleFS: magic number mismatch, found 0", 0},
        {0, 0xA37F7B0F, 128, "SimpleFS: magic number mismatch, found a37f7b0f", 0},
        {4, 1, 128, "SimpleFS: version number mismatch, found1", 1},
        {4, 0xFFFFFFFF, 128, "SimpleFS: version number mismatch, found4294967295", 1},
        {8, 173, 128, "SimpleFS: encountered filesystem exceeds size of PersistentArray", 1},
        {8, 0xFFFFFFF0, 128, "SimpleFS: encountered filesystem exceeds size of PersistentArray", 1},
        {8, 128, 136, "SimpleFS: trying to mount filesystem of different size", 1},
        {8, 172, 128, "SimpleFS: trying to mount filesystem of different size", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        FileArray array(200);
        { SimpleFS fs(array, 28, 128, true); }
        putWord(array, 28 + c.offset, c.value);
        const Bytes before = snapshot(array);
        if (c.kind == 0)
            expectFailure<SFS_FSCannotBeRestoredException>([&] { SimpleFS fs(array, 28, c.askedSize, false); },
                                                            c.text);
        else
            expectFailure<SFS_FSCannotBeCreatedException>([&] { SimpleFS fs(array, 28, c.askedSize, false); },
                                                           c.text);
        EXPECT_EQ(snapshot(array), before);
    }
}

TEST(SimpleFS, MountingZeroedMemoryFailsOnTheMagic)
{
    FileArray array(128);
    expectFailure<SFS_FSCannotBeRestoredException>([&] { SimpleFS fs(array, 0, 128, false); },
                                                   "SimpleFS: magic number mismatch, found 0");
}

TEST(SimpleFS, FreshlyFormattedLastsUntilTheFirstWriteOfAFile)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    EXPECT_TRUE(fs.isFreshlyFormatted());
    const uint32_t root = createText(fs, "a");
    EXPECT_FALSE(fs.isFreshlyFormatted());
    fs.format();
    EXPECT_TRUE(fs.isFreshlyFormatted());
    const uint32_t again = createText(fs, "b");
    fs.format();
    EXPECT_TRUE(fs.isFreshlyFormatted());
    EXPECT_EQ(root, again);
}

TEST(SimpleFS, AHeaderThatCountsNoBlocksGivesAFullSystemAndAnEmptyCheck)
{
    FileArray array(128);
    { SimpleFS fs(array, 0, 128, true); }
    putWord(array, 12, 0);
    SimpleFS fs(array, 0, 128, false);
    expectFailure<SFS_FileSystemFullException>([&] { createText(fs, "a"); }, "SimpleFS: file system full");
    uint32_t result = 99;
    EXPECT_EQ(checkText(fs, &result), "check done; 0 empty blocks; 0 files; 0 lost blocks\n");
    EXPECT_EQ(result, 0u);
}

// ---- Files: the flags of every shape ----

TEST(SimpleFS, FilesTakeTheirBlocksAndFlagsByLength)
{
    struct Case {
        std::string text;
        std::vector<Bytes> blocks;
    };
    const Case cases[] = {
        {"", {{0xE9, 0, 0, 0, 0, 0, 0, 0}}},
        {"a", {{0x29, 0, 0, 0, 'a', 0, 0, 0}}},
        {"ab", {{0x49, 0, 0, 0, 'a', 'b', 0, 0}}},
        {"abc", {{0x69, 0, 0, 0, 'a', 'b', 'c', 0}}},
        {"abcd", {{0x89, 0, 0, 0, 'a', 'b', 'c', 'd'}}},
        {"abcde", {{0x09, 1, 0, 0, 'a', 'b', 'c', 'd'}, {0x21, 0, 0, 0, 'e', 0, 0, 0}}},
        {"abcdefgh", {{0x09, 1, 0, 0, 'a', 'b', 'c', 'd'}, {0x81, 0, 0, 0, 'e', 'f', 'g', 'h'}}},
        {"abcdefghi",
         {{0x09, 1, 0, 0, 'a', 'b', 'c', 'd'}, {0x01, 2, 0, 0, 'e', 'f', 'g', 'h'}, {0x21, 0, 0, 0, 'i', 0, 0, 0}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("\"" + c.text + "\"");
        FileArray array(128);
        SimpleFS fs(array, 0, 128, true);
        EXPECT_EQ(createText(fs, c.text), 0u);
        for (uint32_t b = 0; b < c.blocks.size(); ++b)
            EXPECT_EQ(blockAt(array, b), c.blocks[b]) << "block " << b;
        EXPECT_EQ(blockAt(array, static_cast<uint32_t>(c.blocks.size())), Bytes(8, 0));
        EXPECT_EQ(usedBlocksOf(fs), c.blocks.size());
        EXPECT_EQ(wordAt(array, 16), c.blocks.size());
        EXPECT_EQ(fs.fileSize(0), c.text.size());
        EXPECT_EQ(readText(fs, 0), c.text);
        EXPECT_EQ(fs.check(nullptr, false, nullptr), 0u);
    }
}

TEST(SimpleFS, AnEmptyFileReadsNothingAndEndsAtOnce)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = fs.create(nullptr, 0);
    EXPECT_EQ(blockAt(array, root)[0], 0xE9);
    EXPECT_EQ(fs.fileSize(root), 0u);
    ReadState state{5, 1, 3};
    uint8_t target[4] = {7, 7, 7, 7};
    EXPECT_EQ(fs.read(target, 4, root, &state, false), 0u);
    EXPECT_EQ(state.phase, 2u);
    EXPECT_EQ(target[0], 7);
}

TEST(SimpleFS, AllocationRunsOnFromTheCursorAndWritesItAtOnce)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    EXPECT_EQ(createText(fs, "a"), 0u);
    EXPECT_EQ(createText(fs, "b"), 1u);
    EXPECT_EQ(createText(fs, "c"), 2u);
    EXPECT_EQ(wordAt(array, 24), 2u);
    fs.remove(0);
    EXPECT_EQ(createText(fs, "d"), 3u);
    EXPECT_EQ(createText(fs, "efghijklm"), 4u);  // blocks 4, 5 and 6
    EXPECT_EQ(cursorOf(fs), 6u);
    EXPECT_EQ(createText(fs, "nopqr"), 7u);  // root 7, then round to 0
    EXPECT_EQ(blockAt(array, 7)[1], 0);
    EXPECT_EQ(blockAt(array, 0)[0], 0x21);
    EXPECT_EQ(wordAt(array, 24), 0u);
    EXPECT_EQ(readText(fs, 7), "nopqr");
}

TEST(SimpleFS, TheCursorCanBeResetOrSetWithoutTouchingTheHeader)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    createText(fs, "a");
    createText(fs, "b");
    fs.remove(0);
    fs.resetCursor();
    EXPECT_EQ(cursorOf(fs), 7u);
    EXPECT_EQ(wordAt(array, 24), 1u);
    EXPECT_EQ(createText(fs, "c"), 0u);
    fs.setCursor(4);
    EXPECT_EQ(cursorOf(fs), 4u);
    EXPECT_EQ(wordAt(array, 24), 0u);
    EXPECT_EQ(createText(fs, "d"), 5u);
    fs.setCursor(1000);
    EXPECT_EQ(createText(fs, "e"), 2u);
    fs.setCursor(0xFFFFFFFF);
    EXPECT_EQ(createText(fs, "f"), 3u);
}

TEST(SimpleFS, WithAllBlocksUsedCreateFailsAndNothingChanges)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    for (int i = 0; i < 8; ++i)
        createText(fs, "full");
    const Bytes before = snapshot(array);
    expectFailure<SFS_FileSystemFullException>([&] { createText(fs, "x"); }, "SimpleFS: file system full");
    expectFailure<SFS_FileSystemFullException>([&] { createText(fs, ""); }, "SimpleFS: file system full");
    EXPECT_EQ(snapshot(array), before);
    EXPECT_EQ(usedBlocksOf(fs), 8u);
    EXPECT_EQ(cursorOf(fs), 7u);
}

TEST(SimpleFS, TheLastFreeBlockCannotTakeAFileThatNeedsTwo)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    for (int i = 0; i < 7; ++i)
        createText(fs, "full");
    expectFailure<SFS_FileSystemFullException>([&] { createText(fs, "12345"); }, "SimpleFS: file system full");
    EXPECT_EQ(blockAt(array, 7), Bytes(8, 0));
    EXPECT_EQ(usedBlocksOf(fs), 7u);
    EXPECT_EQ(wordAt(array, 16), 7u);
    EXPECT_EQ(createText(fs, "1234"), 7u);
}

TEST(SimpleFS, ACreateThatRunsOutOfBlocksHalfwayLeavesNoTrace)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    for (int i = 0; i < 5; ++i)
        createText(fs, "full");
    expectFailure<SFS_FileSystemFullException>([&] { createText(fs, "0123456789ab+"); },
                                               "SimpleFS: file system full");
    for (uint32_t b = 5; b < 8; ++b)
        EXPECT_EQ(blockAt(array, b), Bytes(8, 0)) << "block " << b;
    EXPECT_EQ(usedBlocksOf(fs), 5u);
    EXPECT_EQ(wordAt(array, 16), 5u);
    EXPECT_EQ(checkText(fs), "check done; 3 empty blocks; 5 files; 0 lost blocks\n");
}

// ---- Rewrites ----

TEST(SimpleFS, RewritingNineBytesWithThreeKeepsTheRootAndFreesTheRest)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = createText(fs, "123456789");
    EXPECT_EQ(usedBlocksOf(fs), 3u);
    writeText(fs, root, "abc");
    EXPECT_EQ(usedBlocksOf(fs), 1u);
    EXPECT_EQ(wordAt(array, 16), 1u);
    EXPECT_EQ(blockAt(array, root), (Bytes{0x69, 0, 0, 0, 'a', 'b', 'c', 0}));
    EXPECT_EQ(blockAt(array, 1), Bytes(8, 0));
    EXPECT_EQ(blockAt(array, 2), Bytes(8, 0));
    EXPECT_EQ(readText(fs, root), "abc");
}

TEST(SimpleFS, RewritingThreeBytesWithNineAllocatesTwoBlocks)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = createText(fs, "abc");
    createText(fs, "x");
    writeText(fs, root, "123456789");
    EXPECT_EQ(usedBlocksOf(fs), 4u);
    EXPECT_EQ(wordAt(array, 16), 4u);
    EXPECT_EQ(blockAt(array, root), (Bytes{0x09, 2, 0, 0, '1', '2', '3', '4'}));
    EXPECT_EQ(blockAt(array, 2), (Bytes{0x01, 3, 0, 0, '5', '6', '7', '8'}));
    EXPECT_EQ(blockAt(array, 3), (Bytes{0x21, 0, 0, 0, '9', 0, 0, 0}));
    EXPECT_EQ(readText(fs, root), "123456789");
}

TEST(SimpleFS, ARewriteOfTheSameLengthStaysInTheSameBlocks)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = createText(fs, "0123456789");
    const uint32_t cursor = cursorOf(fs);
    writeText(fs, root, "abcdefghij");
    EXPECT_EQ(cursorOf(fs), cursor);
    EXPECT_EQ(usedBlocksOf(fs), 3u);
    EXPECT_EQ(blockAt(array, 0), (Bytes{0x09, 1, 0, 0, 'a', 'b', 'c', 'd'}));
    EXPECT_EQ(blockAt(array, 1), (Bytes{0x01, 2, 0, 0, 'e', 'f', 'g', 'h'}));
    EXPECT_EQ(blockAt(array, 2), (Bytes{0x41, 0, 0, 0, 'i', 'j', 0, 0}));
}

TEST(SimpleFS, RewritingAChainWithNothingFreesAllButTheRootWhichKeepsItsBytes)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = createText(fs, "123456789");
    fs.write(nullptr, 0, root);
    EXPECT_EQ(blockAt(array, root), (Bytes{0xE9, 1, 0, 0, '1', '2', '3', '4'}));
    EXPECT_EQ(blockAt(array, 1), Bytes(8, 0));
    EXPECT_EQ(blockAt(array, 2), Bytes(8, 0));
    EXPECT_EQ(usedBlocksOf(fs), 1u);
    EXPECT_EQ(fs.fileSize(root), 0u);
    EXPECT_EQ(readText(fs, root), "");
    EXPECT_EQ(fs.check(nullptr, false, nullptr), 0u);
}

TEST(SimpleFS, RewritingAOneBlockFileWithNothingChangesOnlyTheFlags)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = createText(fs, "xyz");
    fs.write(nullptr, 0, root);
    EXPECT_EQ(blockAt(array, root), (Bytes{0xE9, 0, 0, 0, 'x', 'y', 'z', 0}));
    EXPECT_EQ(usedBlocksOf(fs), 1u);
    fs.write(nullptr, 0, root);
    EXPECT_EQ(blockAt(array, root), (Bytes{0xE9, 0, 0, 0, 'x', 'y', 'z', 0}));
    EXPECT_EQ(usedBlocksOf(fs), 1u);
}

TEST(SimpleFS, AnEmptyFileTakesNewContentInItsRoot)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    createText(fs, "a");
    const uint32_t root = createText(fs, "");
    writeText(fs, root, "hello");
    EXPECT_EQ(blockAt(array, root), (Bytes{0x09, 2, 0, 0, 'h', 'e', 'l', 'l'}));
    EXPECT_EQ(blockAt(array, 2), (Bytes{0x21, 0, 0, 0, 'o', 0, 0, 0}));
    EXPECT_EQ(usedBlocksOf(fs), 3u);
    EXPECT_EQ(readText(fs, root), "hello");
}

TEST(SimpleFS, WriteToABlockThatIsNoRootFailsAndLeavesItUnchanged)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    createText(fs, "123456789");
    const Bytes before = snapshot(array);
    for (uint32_t block : {1u, 2u, 3u}) {
        SCOPED_TRACE(block);
        expectFailure<SFS_Exception>([&] { writeText(fs, block, "new"); }, "SimpleFS: not a root block");
    }
    EXPECT_EQ(snapshot(array), before);
}

// The old chain is removed as by remove: a gap in it is an error, not the end of the chain.
TEST(SimpleFS, ARewriteShorterThanABrokenChainFreesUpToTheGapAndThenFails)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = createText(fs, "abcdefghijkl");
    setBlock(array, 2, Bytes(8, 0));
    expectFailure<SFS_Exception>([&] { writeText(fs, root, "xyz"); }, "SimpleFS: trying to delete empty block");
    EXPECT_EQ(blockAt(array, root), (Bytes{0x69, 0, 0, 0, 'x', 'y', 'z', 0}));
    EXPECT_EQ(blockAt(array, 1), Bytes(8, 0));
    EXPECT_EQ(usedBlocksOf(fs), 2u);
}

TEST(SimpleFS, EmptyingAFileWithABrokenChainFailsBeforeTheRootChanges)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = createText(fs, "abcdefghijkl");
    setBlock(array, 2, Bytes(8, 0));
    expectFailure<SFS_Exception>([&] { fs.write(nullptr, 0, root); }, "SimpleFS: trying to delete empty block");
    EXPECT_EQ(blockAt(array, root), (Bytes{0x09, 1, 0, 0, 'a', 'b', 'c', 'd'}));
    EXPECT_EQ(blockAt(array, 1), Bytes(8, 0));
    EXPECT_EQ(usedBlocksOf(fs), 2u);
}

TEST(SimpleFS, AFailedRewriteForLackOfBlocksLosesTheFile)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = createText(fs, "1234567");
    for (int i = 0; i < 5; ++i)
        createText(fs, "full");
    expectFailure<SFS_FileSystemFullException>([&] { writeText(fs, root, "0123456789abcdef"); },
                                               "SimpleFS: file system full");
    EXPECT_EQ(blockAt(array, 0), Bytes(8, 0));
    EXPECT_EQ(blockAt(array, 1), Bytes(8, 0));
    EXPECT_EQ(blockAt(array, 7), Bytes(8, 0));
    EXPECT_FALSE(fs.isRoot(root));
    expectFailure<SFS_FileNotFoundException>([&] { readText(fs, root); },
                                             "SimpleFS: addressed empty block in address 0x0");
    // The count of used blocks stays true to the store.
    EXPECT_EQ(usedBlocksOf(fs), 5u);
    EXPECT_EQ(wordAt(array, 16), 5u);
    EXPECT_EQ(checkText(fs), "check done; 3 empty blocks; 5 files; 0 lost blocks\n");
}

TEST(SimpleFS, AFailedRewriteThatOutgrowsTheOldChainCountsOneBlockTooFew)
{
    // Nothing was counted up for the old last block, yet the undo counts one down before the removal does.
    struct Case {
        std::string old, text;
        uint32_t full, usedAfter;
    };
    const Case cases[] = {
        {"ab", "abcdefgh", 7, 6},
        {"abcde", "0123456789abc", 6, 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.old);
        FileArray array(128);
        SimpleFS fs(array, 0, 128, true);
        const uint32_t root = createText(fs, c.old);
        for (uint32_t i = 0; i < c.full; ++i)
            createText(fs, "full");
        expectFailure<SFS_FileSystemFullException>([&] { writeText(fs, root, c.text); },
                                                   "SimpleFS: file system full");
        EXPECT_FALSE(fs.isRoot(root));
        EXPECT_EQ(blockAt(array, root), Bytes(8, 0));
        EXPECT_EQ(usedBlocksOf(fs), c.usedAfter);
        EXPECT_EQ(wordAt(array, 16), c.usedAfter);
        EXPECT_EQ(checkText(fs), "check done; " + std::to_string(8 - c.full) + " empty blocks; " +
                                     std::to_string(c.full) + " files; 0 lost blocks\n");
    }
}

// ---- Reading ----

TEST(SimpleFS, ReadingInPiecesCarriesTheStateAcrossBlocks)
{
    FileArray array(1024);
    SimpleFS fs(array, 0, 1024, true);
    const std::string text = "The quick brown fox jumps over the lazy dog";
    const uint32_t root = createText(fs, text);
    for (uint32_t piece = 1; piece <= 9; ++piece) {
        SCOPED_TRACE(piece);
        ReadState state;
        std::string got;
        std::vector<uint8_t> buffer(piece);
        bool going = false;
        do {
            const uint32_t n = fs.read(buffer.data(), piece, root, &state, going);
            got.append(buffer.begin(), buffer.begin() + n);
            EXPECT_TRUE(n == piece || state.phase == 2);
            going = true;
        } while (state.phase != 2);
        EXPECT_EQ(got, text);
        EXPECT_EQ(fs.read(buffer.data(), piece, root, &state, true), 0u);
        EXPECT_EQ(state.phase, 2u);
    }
}

TEST(SimpleFS, AReadStopsAtTheLengthAskedFor)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = createText(fs, "abcdefgh");
    uint8_t target[8] = {};
    ReadState state;
    EXPECT_EQ(fs.read(target, 4, root, &state, false), 4u);
    EXPECT_EQ(state.phase, 1u);
    EXPECT_EQ(state.block, 1u);
    EXPECT_EQ(state.offset, 0u);
    EXPECT_EQ(fs.read(target, 3, root, &state, true), 3u);
    EXPECT_EQ(state.phase, 1u);
    EXPECT_EQ(state.offset, 3u);
    EXPECT_EQ(fs.read(target + 3, 3, root, &state, true), 1u);
    EXPECT_EQ(state.phase, 2u);
    EXPECT_EQ(std::string(target, target + 4), "efgh");
    EXPECT_EQ(fs.read(target, 0, root, &state, false), 0u);
    EXPECT_EQ(state.phase, 0u);
    EXPECT_EQ(state.block, root);
}

TEST(SimpleFS, AReadWithoutStateStartsAtTheRoot)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    createText(fs, "zz");
    const uint32_t root = createText(fs, "abcdef");
    uint8_t target[10] = {};
    EXPECT_EQ(fs.read(target, 10, root, nullptr, true), 6u);
    EXPECT_EQ(std::string(target, target + 6), "abcdef");
    EXPECT_EQ(fs.read(target, 2, root, nullptr, false), 2u);
}

TEST(SimpleFS, ReadingFailsOnAFreeBlockOrAnInnerBlock)
{
    FileArray array(1024);
    SimpleFS fs(array, 0, 1024, true);
    const uint32_t root = createText(fs, "123456789");
    uint8_t target[16];
    expectFailure<SFS_FileNotFoundException>([&] { fs.read(target, 16, 31, nullptr, false); },
                                             "SimpleFS: addressed empty block in address 0x1f");
    expectFailure<SFS_FileNotFoundException>([&] { fs.read(target, 16, 1, nullptr, false); },
                                             "SimpleFS: not a root block");
    // A file removed under a reader's feet.
    ReadState state;
    EXPECT_EQ(fs.read(target, 2, root, &state, false), 2u);
    fs.remove(root);
    createText(fs, "abcd");
    expectFailure<SFS_FileNotFoundException>([&] { fs.read(target, 16, root, &state, true); },
                                             "SimpleFS: addressed empty block in address 0x0");
}

TEST(SimpleFS, AReaderMeetingAnotherFilesBlockOnlyFailsAtTheStart)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const uint32_t root = createText(fs, "abcdefgh");
    setBlock(array, 1, {0x29, 0, 0, 0, 'Z', 0, 0, 0});  // a damaged chain runs into a root
    uint8_t target[16] = {};
    EXPECT_EQ(fs.read(target, 16, root, nullptr, false), 5u);
    EXPECT_EQ(std::string(target, target + 5), "abcdZ");
}

TEST(SimpleFS, ADamagedLengthNeverReadsPastThePayload)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    for (uint8_t flags : {0xA9, 0xC9, 0xF9}) {
        SCOPED_TRACE(static_cast<int>(flags));
        setBlock(array, 0, {flags, 0, 0, 0, 'a', 'b', 'c', 'd'});
        setBlock(array, 1, {0x29, 0, 0, 0, 'e', 0, 0, 0});
        uint8_t target[16] = {};
        ReadState state;
        EXPECT_EQ(fs.read(target, 16, 0, &state, false), 4u);
        EXPECT_EQ(state.phase, 2u);
        EXPECT_EQ(std::string(target, target + 4), "abcd");
    }
}

// ---- Size, removal, type and range checks ----

TEST(SimpleFS, FileSizeAddsFourPerFullBlockAndTheLengthOfTheLast)
{
    FileArray array(1024);
    SimpleFS fs(array, 0, 1024, true);
    for (uint32_t length : {0u, 1u, 3u, 4u, 5u, 8u, 9u, 12u, 13u, 100u, 401u}) {
        SCOPED_TRACE(length);
        const uint32_t root = createText(fs, std::string(length, 'q'));
        EXPECT_EQ(fs.fileSize(root), length);
        fs.remove(root);
    }
    EXPECT_EQ(usedBlocksOf(fs), 0u);
}

TEST(SimpleFS, FileSizeOfAFreeBlockFailsWithItsNumber)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    expectFailure<SFS_Exception>([&] { fs.fileSize(3); }, "SimpleFS: querying size of empty file 3");
    createText(fs, "abcdefghi");
    setBlock(array, 1, Bytes(8, 0));
    expectFailure<SFS_Exception>([&] { fs.fileSize(0); }, "SimpleFS: querying size of empty file 1");
}

TEST(SimpleFS, FileSizeEndsWithNothingWhereverAnEmptyMarkIsMet)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    createText(fs, "abcdefghijkl");
    setBlock(array, 2, {0xE9, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(fs.fileSize(0), 0u);
    // Any other last block adds its length bits, even a damaged one.
    setBlock(array, 2, {0xE1, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(fs.fileSize(0), 15u);
}

TEST(SimpleFS, FileSizeOfAChainThatRunsInACircleFails)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    createText(fs, "abcdefghijkl");
    setBlock(array, 2, {0x01, 1, 0, 0, 'i', 'j', 'k', 'l'});
    expectFailure<SFS_Exception>([&] { fs.fileSize(0); }, "SimpleFS: chain of file 0 runs in a circle");
}

TEST(SimpleFS, RemoveClearsEveryBlockOfTheChain)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    createText(fs, "a");
    const uint32_t root = createText(fs, "0123456789");
    createText(fs, "b");
    EXPECT_EQ(usedBlocksOf(fs), 5u);
    fs.remove(root);
    for (uint32_t b = 1; b <= 3; ++b)
        EXPECT_EQ(blockAt(array, b), Bytes(8, 0)) << "block " << b;
    EXPECT_EQ(usedBlocksOf(fs), 2u);
    EXPECT_EQ(wordAt(array, 16), 2u);
    EXPECT_EQ(readText(fs, 0), "a");
    EXPECT_EQ(readText(fs, 4), "b");
    fs.remove(fs.create(nullptr, 0));
    EXPECT_EQ(usedBlocksOf(fs), 2u);
}

TEST(SimpleFS, RemovingAFreeBlockFails)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    const Bytes before = snapshot(array);
    expectFailure<SFS_Exception>([&] { fs.remove(2); }, "SimpleFS: trying to delete empty block");
    EXPECT_EQ(snapshot(array), before);
}

TEST(SimpleFS, RemovingABrokenChainFreesWhatComesBeforeTheGapAndThenFails)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    createText(fs, "abcdefghijkl");
    setBlock(array, 2, Bytes(8, 0));
    expectFailure<SFS_Exception>([&] { fs.remove(0); }, "SimpleFS: trying to delete empty block");
    EXPECT_EQ(blockAt(array, 0), Bytes(8, 0));
    EXPECT_EQ(blockAt(array, 1), Bytes(8, 0));
    EXPECT_EQ(usedBlocksOf(fs), 1u);
}

TEST(SimpleFS, AUsedBlockOfABadTypeIsRefusedByEveryFileOperation)
{
    for (uint8_t flags : {0x8B, 0x8D, 0x8F, 0x0B, 0x03}) {
        SCOPED_TRACE(static_cast<int>(flags));
        FileArray array(128);
        SimpleFS fs(array, 0, 128, true);
        createText(fs, "abcd");
        setBlock(array, 0, {flags, 0, 0, 0, 'a', 'b', 'c', 'd'});
        const Bytes before = snapshot(array);
        uint8_t target[8];
        const std::string text = "encountered wrong block type (not 00)";
        expectFailure<SFS_Exception>([&] { fs.read(target, 8, 0, nullptr, false); }, text);
        expectFailure<SFS_Exception>([&] { fs.fileSize(0); }, text);
        expectFailure<SFS_Exception>([&] { fs.remove(0); }, text);
        if (fs.isRoot(0)) {
            expectFailure<SFS_Exception>([&] { writeText(fs, 0, "x"); }, text);
            expectFailure<SFS_Exception>([&] { fs.write(nullptr, 0, 0); }, text);
        }
        EXPECT_EQ(snapshot(array), before);
    }
}

TEST(SimpleFS, AFreeBlockWithTypeBitsPassesTheTypeCheck)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    setBlock(array, 0, {0x06, 0, 0, 0, 0, 0, 0, 0});
    uint8_t target[4];
    expectFailure<SFS_FileNotFoundException>([&] { fs.read(target, 4, 0, nullptr, false); },
                                             "SimpleFS: addressed empty block in address 0x0");
    expectFailure<SFS_Exception>([&] { fs.fileSize(0); }, "SimpleFS: querying size of empty file 0");
}

TEST(SimpleFS, BlockNumbersBeyondTheTableButInsideTheArrayAreReadAsBlocks)
{
    // A region of 128 bytes in an array of 256: blocks 8 to 23 lie behind the region, block 23 at 248.
    FileArray array(256);
    SimpleFS fs(array, 0, 128, true);
    const Bytes before = snapshot(array);
    for (uint32_t block : {8u, 9u, 23u}) {
        SCOPED_TRACE(block);
        uint8_t target[4];
        std::ostringstream hex;
        hex << std::hex << block;
        expectFailure<SFS_FileNotFoundException>([&] { fs.read(target, 4, block, nullptr, false); },
                                                 "SimpleFS: addressed empty block in address 0x" + hex.str());
        expectFailure<SFS_Exception>([&] { fs.fileSize(block); },
                                     "SimpleFS: querying size of empty file " + std::to_string(block));
        expectFailure<SFS_Exception>([&] { fs.remove(block); }, "SimpleFS: trying to delete empty block");
        EXPECT_FALSE(fs.isRoot(block));
    }
    EXPECT_EQ(snapshot(array), before);
    setBlock(array, 23, {0x69, 0, 0, 0, 'a', 'b', 'c', 0});
    EXPECT_TRUE(fs.isRoot(23));
    EXPECT_EQ(fs.fileSize(23), 3u);
}

TEST(SimpleFS, BlocksBeyondTheEndOfTheArrayRaiseTheirOwnException)
{
    FileArray array(256);
    SimpleFS fs(array, 0, 128, true);
    const Bytes before = snapshot(array);
    for (uint32_t block : {24u, 1000u, 0x1FFFFFF8u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(block);
        const std::string text = "SimpleFS: block " + std::to_string(block) + " lies beyond the end of the persistent array";
        uint8_t target[4];
        expectFailure<SFS_Exception>([&] { fs.read(target, 4, block, nullptr, false); }, text);
        expectFailure<SFS_Exception>([&] { fs.fileSize(block); }, text);
        expectFailure<SFS_Exception>([&] { fs.remove(block); }, text);
        expectFailure<SFS_Exception>([&] { fs.isRoot(block); }, text);
        const uint8_t data[2] = {1, 2};
        expectFailure<SFS_Exception>([&] { fs.write(data, 2, block); }, text);
    }
    EXPECT_EQ(snapshot(array), before);
}

TEST(SimpleFS, AHeaderClaimingMoreBlocksThanTheArrayHoldsFailsTheCheckAtOnce)
{
    // 0xFFFFFFFF blocks in a region of 128 bytes: the check would otherwise visit four billion blocks.
    FileArray array(128);
    SimpleFS formatted(array, 0, 128, true);
    const uint32_t claimed = 0xFFFFFFFF;
    array.writeBlock(reinterpret_cast<const uint8_t*>(&claimed), 4, 12);
    SimpleFS fs(array, 0, 128, false);
    SimpleFSCheckReport report;
    expectFailure<SFS_Exception>([&] { fs.check(&report, false, nullptr); },
                                 "SimpleFS: block 4294967294 lies beyond the end of the persistent array");
    expectFailure<SFS_Exception>([&] { fs.create(nullptr, 0); },
                                 "SimpleFS: block 8 lies beyond the end of the persistent array");
}

TEST(SimpleFS, IsRootLooksAtTheUsedAndRootBits)
{
    struct Case {
        uint8_t flags;
        bool root;
    };
    const Case cases[] = {{0x09, true},  {0x89, true},  {0xE9, true},  {0x29, true},  {0x0F, true},
                          {0x01, false}, {0x21, false}, {0x08, false}, {0x00, false}, {0xE8, false}};
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.flags));
        setBlock(array, 5, {c.flags, 0, 0, 0, 0, 0, 0, 0});
        EXPECT_EQ(fs.isRoot(5), c.root);
    }
}

// ---- check ----

TEST(SimpleFS, CheckOnAFreshSystemFindsOnlyEmptyBlocks)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    uint32_t result = 99;
    EXPECT_EQ(checkText(fs, &result), "check done; 8 empty blocks; 0 files; 0 lost blocks\n");
    EXPECT_EQ(result, 0u);
}

TEST(SimpleFS, CheckCountsFilesAndEmptyBlocksAndChangesNothing)
{
    FileArray array(1024);
    SimpleFS fs(array, 0, 1024, true);
    createText(fs, "");
    createText(fs, "abc");
    createText(fs, std::string(30, 'x'));
    const Bytes before = snapshot(array);
    uint32_t result = 99;
    EXPECT_EQ(checkText(fs, &result), "check done; 110 empty blocks; 3 files; 0 lost blocks\n");
    EXPECT_EQ(result, 0u);
    EXPECT_EQ(snapshot(array), before);
}

TEST(SimpleFS, CheckReportsEveryKindOfDamage)
{
    struct Case {
        const char* name;
        std::vector<std::pair<uint32_t, Bytes>> blocks;
        std::string report;
        SimpleFSCheckReport counters;
        uint32_t result;
    };
    const Case cases[] = {
        {"lost inner block",
         {{3, {0x21, 0, 0, 0, 'x', 0, 0, 0}}},
         "found lost block: 3\ncheck done; 7 empty blocks; 0 files; 1 lost blocks\n",
         {0, 0, 0, 0, 1, 0},
         1},
        {"unknown type",
         {{2, {0x8B, 0, 0, 0, 0, 0, 0, 0}}},
         "block 2 is of unknown type\ncheck done; 7 empty blocks; 1 files; 0 lost blocks\n",
         {1, 0, 0, 0, 0, 0},
         1},
        {"empty block in a chain",
         {{1, {0x09, 4, 0, 0, 0, 0, 0, 0}}},
         "file 1 is damaged; block 4 shouldn't be empty\ncheck done; 7 empty blocks; 1 files; 0 lost blocks\n",
         {0, 0, 0, 0, 0, 0},
         0},
        {"another root",
         {{0, {0x09, 5, 0, 0, 0, 0, 0, 0}}, {5, {0x89, 0, 0, 0, 0, 0, 0, 0}}},
         "file 0 contains another root block: 5\ncheck done; 6 empty blocks; 1 files; 0 lost blocks\n",
         {0, 1, 0, 0, 0, 0},
         1},
        {"invalid length",
         {{0, {0x09, 1, 0, 0, 0, 0, 0, 0}}, {1, {0xA1, 2, 0, 0, 0, 0, 0, 0}}, {2, {0x21, 0, 0, 0, 0, 0, 0, 0}}},
         "file 0 is damaged; contains a block (1), which has invalid data length\nfound lost block: 2\n"
         "check done; 5 empty blocks; 1 files; 1 lost blocks\n",
         {0, 0, 1, 0, 1, 0},
         2},
        {"empty mark on an inner block",
         {{6, {0x09, 7, 0, 0, 0, 0, 0, 0}}, {7, {0xE1, 0, 0, 0, 0, 0, 0, 0}}},
         "file 6 is damaged; contains a block (7), which has invalid data length\n"
         "check done; 6 empty blocks; 1 files; 0 lost blocks\n",
         {0, 0, 1, 0, 0, 0},
         1},
        {"free block with stray bits",
         {{3, {0xEE, 1, 0, 0, 0, 0, 0, 0}}},
         "check done; 8 empty blocks; 0 files; 0 lost blocks\n",
         {0, 0, 0, 0, 0, 0},
         0},
        {"empty file",
         {{4, {0xE9, 200, 0, 0, 1, 2, 3, 4}}},
         "check done; 7 empty blocks; 1 files; 0 lost blocks\n",
         {0, 0, 0, 0, 0, 0},
         0},
        {"link out of range, not counted",
         {{0, {0x09, 8, 0, 0, 0, 0, 0, 0}}, {1, {0x09, 0x10, 0x27, 0, 0, 0, 0, 0}}},
         "file 0 is damaged; follow-up points outside of filesystem memory: 8\n"
         "file 1 is damaged; follow-up points outside of filesystem memory: 10000\n"
         "check done; 6 empty blocks; 2 files; 0 lost blocks\n",
         {0, 0, 0, 0, 0, 0},
         0},
        {"circle",
         {{0, {0x09, 1, 0, 0, 0, 0, 0, 0}}, {1, {0x01, 2, 0, 0, 0, 0, 0, 0}}, {2, {0x01, 1, 0, 0, 0, 0, 0, 0}}},
         "file 0 is damaged; its chain runs in a circle\ncheck done; 5 empty blocks; 1 files; 0 lost blocks\n",
         {0, 0, 1, 0, 0, 0},
         1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FileArray array(128);
        SimpleFS fs(array, 0, 128, true);
        for (const auto& [block, bytes] : c.blocks)
            setBlock(array, block, bytes);
        SimpleFSCheckReport counters{9, 9, 9, 9, 9, 9};
        uint32_t result = 99;
        EXPECT_EQ(checkText(fs, &result, &counters), c.report);
        EXPECT_EQ(result, c.result);
        EXPECT_EQ(counters.unknownBlocks, c.counters.unknownBlocks);
        EXPECT_EQ(counters.additionalRoots, c.counters.additionalRoots);
        EXPECT_EQ(counters.invalidLengths, c.counters.invalidLengths);
        EXPECT_EQ(counters.linksOutOfRange, c.counters.linksOutOfRange);
        EXPECT_EQ(counters.lostBlocks, c.counters.lostBlocks);
        EXPECT_EQ(counters.reserved, 0u);
    }
}

TEST(SimpleFS, AChainFromAnInnerBlockIsSkippedSoItsBlocksStayLost)
{
    // Block 1 is skipped at its own turn but reached later from root 3; blocks 5 and 6 are reached from no root.
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    setBlock(array, 1, {0x21, 0, 0, 0, 0, 0, 0, 0});
    setBlock(array, 3, {0x09, 1, 0, 0, 0, 0, 0, 0});
    setBlock(array, 5, {0x01, 6, 0, 0, 0, 0, 0, 0});
    setBlock(array, 6, {0x41, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(checkText(fs), "found lost block: 5\nfound lost block: 6\n"
                             "check done; 4 empty blocks; 1 files; 2 lost blocks\n");
}

TEST(SimpleFS, CheckWorksWithoutStreamOrReportAndIgnoresItsFlag)
{
    FileArray array(128);
    SimpleFS fs(array, 0, 128, true);
    setBlock(array, 3, {0x21, 0, 0, 0, 0, 0, 0, 0});
    setBlock(array, 4, {0x8D, 0, 0, 0, 0, 0, 0, 0});
    const Bytes before = snapshot(array);
    SimpleFSCheckReport counters;
    EXPECT_EQ(fs.check(&counters, false, nullptr), 2u);
    EXPECT_EQ(counters.lostBlocks, 1u);
    EXPECT_EQ(counters.unknownBlocks, 1u);
    EXPECT_EQ(fs.check(nullptr, true, nullptr), 2u);
    std::ostringstream withFlag;
    std::ostringstream withoutFlag;
    fs.check(nullptr, true, &withFlag);
    fs.check(nullptr, false, &withoutFlag);
    EXPECT_EQ(withFlag.str(), withoutFlag.str());
    EXPECT_EQ(snapshot(array), before);
}
