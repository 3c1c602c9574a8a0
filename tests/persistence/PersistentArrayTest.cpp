#include "persistence/PersistentArray.h"

#include "persistence/FileArray.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <sstream>
#include <utility>
#include <vector>

using SRAM::FileArray;
using SRAM::PersistentArray;

namespace {

// Keeps a log of every byte access, so that the order of the base's loops shows.
class RecordingArray : public PersistentArray {
public:
    explicit RecordingArray(uint32_t length) : bytes(length, 0) {}
    void flush(uint32_t, uint32_t) override {}
    void writeByte(uint32_t address, uint8_t value) override
    {
        writes.emplace_back(address, value);
        bytes.at(address) = value;
    }
    uint8_t readByte(uint32_t address) override
    {
        reads.push_back(address);
        return bytes.at(address);
    }
    uint32_t size() override { return static_cast<uint32_t>(bytes.size()); }

    std::vector<uint8_t> bytes;
    std::vector<std::pair<uint32_t, uint8_t>> writes;
    std::vector<uint32_t> reads;
};

// Cells with bits that stick at 0 or 1.
class FaultyArray : public FileArray {
public:
    explicit FaultyArray(uint32_t length) : FileArray(length) {}
    void stick(uint32_t address, uint8_t ones, uint8_t zeros) { faults[address] = {ones, zeros}; }
    void writeByte(uint32_t address, uint8_t value) override
    {
        const auto fault = faults.find(address);
        if (fault != faults.end())
            value = static_cast<uint8_t>((value | fault->second.first) & ~fault->second.second);
        FileArray::writeByte(address, value);
    }

private:
    std::map<uint32_t, std::pair<uint8_t, uint8_t>> faults;
};

const std::string legend =
    "0b0001: failed r/w 0x00\r\n0b0010: failed r/w 0xFF\r\n0b0100: failed r/w 0xAA\r\n0b1000: failed r/w 0x55\r\n";

}  // namespace

TEST(PersistentArray, ClearWritesZeroToEachByteUpward)
{
    RecordingArray array(5);
    array.bytes = {9, 9, 9, 9, 9};
    array.clear();
    const std::vector<std::pair<uint32_t, uint8_t>> expected = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}};
    EXPECT_EQ(array.writes, expected);
}

TEST(PersistentArray, WriteBlockWritesByteByByteUpwardAndReturnsTheLength)
{
    RecordingArray array(10);
    const uint8_t source[3] = {7, 8, 9};
    EXPECT_EQ(array.writeBlock(source, 3, 4), 3u);
    const std::vector<std::pair<uint32_t, uint8_t>> expected = {{4, 7}, {5, 8}, {6, 9}};
    EXPECT_EQ(array.writes, expected);
}

TEST(PersistentArray, ReadBlockReadsByteByByteUpwardAndReturnsTheLength)
{
    RecordingArray array(10);
    array.bytes = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    uint8_t target[4] = {};
    EXPECT_EQ(array.readBlock(target, 4, 6), 4u);
    EXPECT_EQ(array.reads, (std::vector<uint32_t>{6, 7, 8, 9}));
    EXPECT_EQ(std::vector<uint8_t>(target, target + 4), (std::vector<uint8_t>{6, 7, 8, 9}));
}

TEST(PersistentArray, BlockOperationsOfLengthZeroTouchNothing)
{
    RecordingArray array(2);
    uint8_t buffer[1] = {5};
    EXPECT_EQ(array.writeBlock(buffer, 0, 0), 0u);
    EXPECT_EQ(array.readBlock(buffer, 0, 0), 0u);
    EXPECT_TRUE(array.writes.empty());
    EXPECT_TRUE(array.reads.empty());
}

TEST(RandomTest, AGoodArrayHasNoBadCellsAndNoReport)
{
    FileArray array(1000);
    std::ostringstream report;
    EXPECT_EQ(SRAM::randomTest(array, 0, 1000, &report, 10), 0u);
    EXPECT_EQ(report.str(), "");
}

TEST(RandomTest, LeavesTheSeededSequenceBehindInItsRangeAlone)
{
    FileArray array(40);
    SRAM::randomTest(array, 8, 24, nullptr, 0);
    std::srand(43785623);
    for (uint32_t i = 8; i < 32; ++i)
        EXPECT_EQ(array.readByte(i), static_cast<uint8_t>(std::rand())) << "at " << i;
    for (uint32_t i : {0u, 7u, 32u, 39u})
        EXPECT_EQ(array.readByte(i), 0) << "at " << i;
}

TEST(RandomTest, ReportsEachBadCellUpToTheMaximum)
{
    FaultyArray array(0x200);
    for (uint32_t address : {0x10u, 0x11u, 0x12u, 0x1ABu})
        array.stick(address, 0xFF, 0x00);
    std::srand(43785623);
    std::vector<uint8_t> sequence;
    for (int i = 0; i < 0x200; ++i)
        sequence.push_back(static_cast<uint8_t>(std::rand()));
    // A cell stuck at 0xFF passes where the sequence itself gives 0xFF.
    uint32_t expectedBad = 0;
    std::string expectedLines;
    const char* lines[] = {"failed test on cell 0x00000010\r\n", "failed test on cell 0x00000011\r\n",
                           "failed test on cell 0x00000012\r\n", "failed test on cell 0x000001ab\r\n"};
    const uint32_t addresses[] = {0x10, 0x11, 0x12, 0x1AB};
    for (int i = 0; i < 4; ++i) {
        if (sequence[addresses[i]] == 0xFF)
            continue;
        ++expectedBad;
        if (expectedBad <= 3)
            expectedLines += lines[i];
    }
    ASSERT_EQ(expectedBad, 4u);

    std::ostringstream report;
    EXPECT_EQ(SRAM::randomTest(array, 0, 0x200, &report, 3), 4u);
    EXPECT_EQ(report.str(), expectedLines);
}

TEST(RandomTest, WithANullStreamItJustCounts)
{
    FaultyArray array(64);
    array.stick(5, 0xFF, 0x00);
    array.stick(6, 0x00, 0xFF);
    std::srand(43785623);
    std::vector<uint8_t> sequence;
    for (int i = 0; i < 64; ++i)
        sequence.push_back(static_cast<uint8_t>(std::rand()));
    ASSERT_NE(sequence[5], 0xFF);
    ASSERT_NE(sequence[6], 0x00);
    EXPECT_EQ(SRAM::randomTest(array, 0, 64, nullptr, 100), 2u);
}

TEST(RandomTest, LeavesTheNumberFormatOfTheStreamAlone)
{
    FaultyArray array(64);
    array.stick(20, 0x00, 0xFF);
    std::ostringstream report;
    ASSERT_EQ(SRAM::randomTest(array, 0, 64, &report, 5), 1u);
    report << 255;
    EXPECT_EQ(report.str(), "failed test on cell 0x00000014\r\n255");
}

TEST(PatternTest, AGoodArrayPassesWithAnEmptyReportAndKeepsItsContent)
{
    FileArray array(256);
    for (uint32_t i = 0; i < 256; ++i)
        array.writeByte(i, static_cast<uint8_t>(i * 7));
    std::ostringstream report;
    EXPECT_EQ(SRAM::patternTest(array, 0, 256, report, 10), 0u);
    EXPECT_EQ(report.str(), "");
    for (uint32_t i = 0; i < 256; ++i)
        EXPECT_EQ(array.readByte(i), static_cast<uint8_t>(i * 7)) << "at " << i;
}

TEST(PatternTest, EachPatternIsOneHexadecimalDigitOfTheFailureWord)
{
    struct Case {
        uint8_t ones;
        uint8_t zeros;
        const char* line;
    };
    const Case cases[] = {
        {0x01, 0x00, "0x00000003 fail: 0x0101\r\n"},  // bit 0 stuck at 1 spoils 0x00 and 0xAA
        {0x00, 0x01, "0x00000003 fail: 0x1010\r\n"},  // bit 0 stuck at 0 spoils 0xFF and 0x55
        {0x00, 0xFF, "0x00000003 fail: 0x1110\r\n"},  // dead cell
        {0xFF, 0x00, "0x00000003 fail: 0x1101\r\n"},  // cell stuck at 0xFF
        {0x00, 0x80, "0x00000003 fail: 0x0110\r\n"},  // high bit stuck at 0 spoils 0xFF and 0xAA
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        FaultyArray array(8);
        array.stick(3, c.ones, c.zeros);
        std::ostringstream report;
        EXPECT_EQ(SRAM::patternTest(array, 0, 8, report, 5), 1u);
        EXPECT_EQ(report.str(), legend + c.line);
    }
}

TEST(PatternTest, ACellThatFailsOnAlternatingHighBitsAloneReadsAsHundred)
{
    // Only 0xAA fails: a cell that drops a write of exactly 0xAA.
    class DropsAA : public FileArray {
    public:
        DropsAA() : FileArray(4) {}
        void writeByte(uint32_t address, uint8_t value) override
        {
            if (!(address == 2 && value == 0xAA))
                FileArray::writeByte(address, value);
        }
    } array;
    std::ostringstream report;
    EXPECT_EQ(SRAM::patternTest(array, 0, 4, report, 1), 1u);
    EXPECT_EQ(report.str(), legend + "0x00000002 fail: 0x0100\r\n");
}

TEST(PatternTest, TheLegendComesOnceAndLinesStopAtTheMaximum)
{
    FaultyArray array(0x300);
    for (uint32_t address : {0x100u, 0x101u, 0x2FFu})
        array.stick(address, 0x00, 0xFF);
    std::ostringstream report;
    EXPECT_EQ(SRAM::patternTest(array, 0x100, 0x200, report, 2), 3u);
    EXPECT_EQ(report.str(), legend + "0x00000100 fail: 0x1110\r\n0x00000101 fail: 0x1110\r\n");
}

TEST(PatternTest, WithAMaximumOfZeroOnlyTheLegendIsWritten)
{
    FaultyArray array(16);
    array.stick(1, 0x00, 0xFF);
    array.stick(9, 0x00, 0xFF);
    std::ostringstream report;
    EXPECT_EQ(SRAM::patternTest(array, 0, 16, report, 0), 2u);
    EXPECT_EQ(report.str(), legend);
}

TEST(PatternTest, TestsOnlyItsRangeAndWritesTheKeptByteBack)
{
    FaultyArray array(16);
    array.stick(2, 0x00, 0xFF);
    array.writeByte(5, 0x3C);
    std::ostringstream report;
    EXPECT_EQ(SRAM::patternTest(array, 3, 10, report, 10), 0u);
    EXPECT_EQ(array.readByte(5), 0x3C);
}

TEST(PatternTest, FlushesItsStreamAtTheEnd)
{
    // A stream buffer that counts the calls of sync.
    class SyncCounter : public std::stringbuf {
    public:
        int syncs = 0;

    protected:
        int sync() override
        {
            ++syncs;
            return 0;
        }
    } buffer;
    std::ostream report(&buffer);
    FileArray array(4);
    SRAM::patternTest(array, 0, 4, report, 1);
    EXPECT_EQ(buffer.syncs, 1);
}
