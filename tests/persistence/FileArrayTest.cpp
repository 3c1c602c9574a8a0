#include "persistence/FileArray.h"

#include "persistence/nullbuf.h"

#include <gtest/gtest.h>

#include <sstream>

using SRAM::FileArray;

namespace {

// Catches what goes to the debug stream while it lives.
class DebugCapture {
public:
    DebugCapture() : previous(debugStream.rdbuf(captured.rdbuf())) {}
    ~DebugCapture() { debugStream.rdbuf(previous); }
    std::string text() const { return captured.str(); }

private:
    std::ostringstream captured;
    std::streambuf* previous;
};

}  // namespace

TEST(FileArray, ANewArrayReadsZeroEverywhere)
{
    FileArray array(300);
    ASSERT_EQ(array.size(), 300u);
    for (uint32_t i = 0; i < 300; ++i)
        ASSERT_EQ(array.readByte(i), 0) << "at " << i;
}

TEST(FileArray, KeepsWhatIsWritten)
{
    FileArray array(16);
    for (uint32_t i = 0; i < 16; ++i)
        array.writeByte(i, static_cast<uint8_t>(0xF0 + i));
    for (uint32_t i = 0; i < 16; ++i)
        EXPECT_EQ(array.readByte(i), 0xF0 + i);
}

TEST(FileArray, ReadingAtTheLengthGivesTheByteAtZeroAndAReportLine)
{
    FileArray array(8);
    array.writeByte(0, 0x5A);
    array.writeByte(7, 0x11);
    DebugCapture debug;
    EXPECT_EQ(array.readByte(8), 0x5A);
    EXPECT_EQ(array.readByte(0xFFFFFFFF), 0x5A);
    EXPECT_EQ(debug.text(), "Access beyond the allocated memory\nAccess beyond the allocated memory\n");
}

TEST(FileArray, ReadingInRangeWritesNothingToTheDebugStream)
{
    FileArray array(8);
    DebugCapture debug;
    array.readByte(7);
    EXPECT_EQ(debug.text(), "");
}

TEST(FileArray, AWriteBeyondTheEndIsNotReportedAndChangesNothing)
{
    FileArray array(4);
    DebugCapture debug;
    array.writeByte(4, 0x77);
    array.writeByte(1000, 0x77);
    EXPECT_EQ(debug.text(), "");
    for (uint32_t i = 0; i < 4; ++i)
        EXPECT_EQ(array.readByte(i), 0);
}

TEST(FileArray, AnEmptyArrayReadsZeroBeyondItsEnd)
{
    FileArray array(0);
    DebugCapture debug;
    EXPECT_EQ(array.size(), 0u);
    EXPECT_EQ(array.readByte(0), 0);
    EXPECT_EQ(debug.text(), "Access beyond the allocated memory\n");
}

TEST(FileArray, ClearOnAnEmptyArrayDoesNothing)
{
    FileArray array(0);
    DebugCapture debug;
    array.clear();
    EXPECT_EQ(array.size(), 0u);
    EXPECT_EQ(debug.text(), "");
}

TEST(FileArray, ClearSetsEveryByteToZero)
{
    FileArray array(64);
    for (uint32_t i = 0; i < 64; ++i)
        array.writeByte(i, 0xFF);
    array.clear();
    for (uint32_t i = 0; i < 64; ++i)
        EXPECT_EQ(array.readByte(i), 0) << "at " << i;
}

TEST(FileArray, FlushLeavesTheContentAlone)
{
    FileArray array(4);
    array.writeByte(2, 9);
    array.flush(0, 4);
    EXPECT_EQ(array.readByte(2), 9);
}

TEST(FileArray, BlockOperationsGoThroughTheBytes)
{
    FileArray array(8);
    const uint8_t source[4] = {1, 2, 3, 4};
    EXPECT_EQ(array.writeBlock(source, 4, 3), 4u);
    uint8_t target[6] = {};
    EXPECT_EQ(array.readBlock(target, 6, 2), 6u);
    const uint8_t expected[6] = {0, 1, 2, 3, 4, 0};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(target[i], expected[i]) << "at " << i;
}
