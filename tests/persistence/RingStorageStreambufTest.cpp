#include "persistence/RingStorageStreambuf.h"

#include "errors/KT_Error.h"
#include "persistence/FileArray.h"
#include "tests/persistence/ArrayWords.h"

#include <gtest/gtest.h>

#include <istream>
#include <limits>
#include <ostream>
#include <string>

using SRAM::FileArray;

namespace {

std::string readAll(std::streambuf& ring)
{
    std::string result;
    for (auto c = ring.sbumpc(); c != std::char_traits<char>::eof(); c = ring.sbumpc())
        result += static_cast<char>(c);
    return result;
}

void writeText(std::streambuf& ring, const std::string& text)
{
    std::ostream out(&ring);
    out << text;
    ASSERT_TRUE(out.good());
}

}  // namespace

TEST(RingStorageStreambuf, AFreshRingOverZeroedMemoryReadsItsZerosFromIndexOne)
{
    FileArray array(14);
    RingStorageStreambuf ring(array, 0, 14);
    EXPECT_EQ(wordAt(array, 0), 0u);
    EXPECT_EQ(ring.pubseekoff(0, std::ios_base::cur, std::ios_base::in), std::streampos(0));
    EXPECT_EQ(readAll(ring), std::string(9, '\0'));
}

TEST(RingStorageStreambuf, AStoredPutAboveTheSizeIsRepairedByTheModulo)
{
    FileArray array(40);
    for (uint32_t i = 0; i < 10; ++i)
        array.writeByte(12 + i, static_cast<uint8_t>('0' + i));
    putWord(array, 8, 27);
    RingStorageStreambuf ring(array, 8, 14);
    EXPECT_EQ(wordAt(array, 8), 7u);
    EXPECT_EQ(readAll(ring), "890123456");
}

TEST(RingStorageStreambuf, AfterTwentyFiveBytesASizeTenRingReturnsTheLastNine)
{
    FileArray array(14);
    RingStorageStreambuf ring(array, 0, 14);
    writeText(ring, "ABCDEFGHIJKLMNOPQRSTUVWXY");
    EXPECT_EQ(wordAt(array, 0), 5u);
    ASSERT_EQ(ring.pubseekpos(0, std::ios_base::in), std::streampos(0));
    EXPECT_EQ(readAll(ring), "QRSTUVWXY");
}

TEST(RingStorageStreambuf, AReaderOfAPartlyWrittenRingSeesTheOldZerosFirst)
{
    FileArray array(14);
    RingStorageStreambuf ring(array, 0, 14);
    writeText(ring, "hello");
    std::istream in(&ring);
    std::string all;
    std::getline(in, all, '!');
    EXPECT_EQ(all, std::string(4, '\0') + "hello");
    EXPECT_TRUE(in.eof());
}

TEST(RingStorageStreambuf, ThePutPositionIsStoredAfterEachByte)
{
    FileArray array(20);
    RingStorageStreambuf ring(array, 4, 8);
    const uint32_t expected[] = {1, 2, 3, 0, 1};
    for (uint32_t i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(ring.sputc(static_cast<char>('a' + i)), 0);
        EXPECT_EQ(wordAt(array, 4), expected[i]);
    }
    EXPECT_EQ(array.readByte(8), 'e');
    EXPECT_EQ(array.readByte(9), 'b');
    EXPECT_EQ(array.readByte(11), 'd');
    EXPECT_EQ(array.readByte(12), 0);
    EXPECT_EQ(array.readByte(3), 0);
}

TEST(RingStorageStreambuf, TheRingKeepsItsPlaceOverARestart)
{
    FileArray array(14);
    {
        RingStorageStreambuf ring(array, 0, 14);
        writeText(ring, "0123456789abc");
    }
    RingStorageStreambuf again(array, 0, 14);
    writeText(again, "de");
    EXPECT_EQ(readAll(again), "6789abcde");
}

TEST(RingStorageStreambuf, WritingMovesTheReaderToTheNewOldestByte)
{
    FileArray array(14);
    RingStorageStreambuf ring(array, 0, 14);
    writeText(ring, "abcdefghijkl");
    EXPECT_EQ(ring.sbumpc(), 'd');
    EXPECT_EQ(ring.sbumpc(), 'e');
    writeText(ring, "m");
    EXPECT_EQ(readAll(ring), "efghijklm");
}

TEST(RingStorageStreambuf, WritingWhileACharacterIsFetchedButNotConsumedLeavesTheReaderAtTheEnd)
{
    // The fetched character is given back after the reader has moved on: it lands on the put position.
    FileArray array(14);
    RingStorageStreambuf ring(array, 0, 14);
    writeText(ring, "abcdefghijkl");
    EXPECT_EQ(ring.sgetc(), 'd');
    writeText(ring, "m");
    EXPECT_EQ(ring.sgetc(), std::char_traits<char>::eof());
}

TEST(RingStorageStreambuf, SeeksAreMeasuredFromTheOldestByte)
{
    FileArray array(14);
    RingStorageStreambuf ring(array, 0, 14);
    writeText(ring, "0123456789abcdef");  // put 6; the oldest byte is '7'
    struct Case {
        std::streamoff offset;
        std::ios_base::seekdir way;
        std::streamoff position;
        int next;
    };
    const Case cases[] = {
        {0, std::ios_base::beg, 0, '7'},   {3, std::ios_base::beg, 3, 'a'},  {8, std::ios_base::beg, 8, 'f'},
        {9, std::ios_base::beg, 9, -1},    {10, std::ios_base::beg, 0, '7'}, {-1, std::ios_base::beg, 9, -1},
        {-2, std::ios_base::beg, 8, 'f'},  {0, std::ios_base::end, 9, -1},   {-1, std::ios_base::end, 8, 'f'},
        {-9, std::ios_base::end, 0, '7'},  {-25, std::ios_base::end, 4, 'b'}, {1, std::ios_base::end, 0, '7'},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.offset << " from " << c.way);
        EXPECT_EQ(ring.pubseekoff(c.offset, c.way, std::ios_base::in), std::streampos(c.position));
        EXPECT_EQ(ring.sgetc(), c.next);
    }
}

TEST(RingStorageStreambuf, ASeekFromTheCurrentPositionCountsAFetchedCharacterAsUnread)
{
    FileArray array(14);
    RingStorageStreambuf ring(array, 0, 14);
    writeText(ring, "0123456789abcdef");
    ring.pubseekpos(2, std::ios_base::in);
    EXPECT_EQ(ring.sgetc(), '9');
    EXPECT_EQ(ring.pubseekoff(0, std::ios_base::cur, std::ios_base::in), std::streampos(2));
    EXPECT_EQ(ring.sbumpc(), '9');
    EXPECT_EQ(ring.pubseekoff(2, std::ios_base::cur, std::ios_base::in), std::streampos(5));
    EXPECT_EQ(ring.sgetc(), 'c');
    EXPECT_EQ(ring.pubseekoff(-4, std::ios_base::cur, std::ios_base::in), std::streampos(1));
    EXPECT_EQ(ring.sgetc(), '8');
}

TEST(RingStorageStreambuf, SeekposIsASeekFromTheBeginning)
{
    FileArray array(14);
    RingStorageStreambuf ring(array, 0, 14);
    writeText(ring, "0123456789abcdef");
    EXPECT_EQ(ring.pubseekpos(4, std::ios_base::in), std::streampos(4));
    EXPECT_EQ(ring.sgetc(), 'b');
    std::istream in(&ring);
    in.seekg(6);
    EXPECT_EQ(in.get(), 'd');
    EXPECT_EQ(in.tellg(), std::streampos(7));
}

TEST(RingStorageStreambuf, ASeekWithOnlyTheOutputFlagFailsAndLeavesTheReadPositionAlone)
{
    FileArray array(14);
    RingStorageStreambuf ring(array, 0, 14);
    writeText(ring, "0123456789abcdef");
    EXPECT_EQ(ring.sbumpc(), '7');
    EXPECT_EQ(ring.pubseekoff(3, std::ios_base::beg, std::ios_base::out), std::streampos(-1));
    EXPECT_EQ(ring.sbumpc(), '8');
    EXPECT_EQ(ring.sgetc(), '9');
    EXPECT_EQ(ring.pubseekpos(0, std::ios_base::out), std::streampos(-1));
    EXPECT_EQ(ring.in_avail(), 0);  // the fetched '9' was given back to the ring
    EXPECT_EQ(ring.sbumpc(), '9');
    EXPECT_EQ(wordAt(array, 0), 6u);
}

TEST(RingStorageStreambuf, ExtremeOffsetsWrapLikeAnyOther)
{
    FileArray array(14);
    RingStorageStreambuf ring(array, 0, 14);
    writeText(ring, "0123456789abcdef");
    const auto lowest = std::numeric_limits<std::streamoff>::min();
    const auto highest = std::numeric_limits<std::streamoff>::max();
    // -2^63 lies 8 below a multiple of 10, and 2^63 - 1 lies 7 above one.
    EXPECT_EQ(ring.pubseekoff(lowest, std::ios_base::beg, std::ios_base::in), std::streampos(2));
    EXPECT_EQ(ring.pubseekoff(highest, std::ios_base::beg, std::ios_base::in), std::streampos(7));
}

TEST(RingStorageStreambuf, ARegionWithNoRoomForARingIsRefused)
{
    FileArray array(8);
    for (uint32_t length : {0u, 4u}) {
        SCOPED_TRACE(length);
        try {
            RingStorageStreambuf ring(array, 0, length);
            ADD_FAILURE() << "no exception";
        } catch (const KT_ERROR::kt_exception& e) {
            EXPECT_EQ(std::string(e.what()),
                      "RingStorageStreambuf: region of " + std::to_string(length) + " bytes leaves no room for a ring");
        }
    }
}

TEST(RingStorageStreambuf, ARingOfOneByteTakesWritesAndReadsNothing)
{
    FileArray array(5);
    RingStorageStreambuf ring(array, 0, 5);
    writeText(ring, "xyz");
    EXPECT_EQ(array.readByte(4), 'z');
    EXPECT_EQ(wordAt(array, 0), 0u);
    EXPECT_EQ(ring.sgetc(), std::char_traits<char>::eof());
}
