#include "persistence/SimpleFS.h"

#include "errors/KT_Error.h"
#include "persistence/FileArray.h"
#include "tests/persistence/SimpleFSTestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using SRAM::FileArray;

namespace {

struct PowerCut {};

// Takes a given number of writes and then loses power: every write call, of a byte or of a block, is one
// write that lands whole or not at all.
class PowerCutArray : public FileArray {
public:
    explicit PowerCutArray(uint32_t length) : FileArray(length) {}

    void cutAfter(uint32_t writes)
    {
        armed = true;
        remaining = writes;
    }
    uint32_t writesDone() const { return done; }

    void writeByte(uint32_t address, uint8_t value) override
    {
        spend();
        FileArray::writeByte(address, value);
    }
    uint32_t writeBlock(const uint8_t* source, uint32_t length, uint32_t address) override
    {
        spend();
        for (uint32_t i = 0; i < length; ++i)
            FileArray::writeByte(address + i, source[i]);
        return length;
    }

private:
    void spend()
    {
        if (armed && remaining == 0)
            throw PowerCut{};
        --remaining;
        ++done;
    }

    bool armed = false;
    uint32_t remaining = 0;
    uint32_t done = 0;
};


struct Scenario {
    const char* name;
    uint32_t size;
    std::vector<std::string> files;
    int target;  // index of the file the operation writes or removes; -1 for a new file
    std::function<void(SimpleFS&, uint32_t)> operation;
    bool runsOutOfBlocks = false;
};


const std::string nineteen = "nineteen characters";

const Scenario scenarios[] = {
    {"create empty", 256, {"alpha", "", "0123456789abc"}, -1, [](SimpleFS& fs, uint32_t) { createText(fs, ""); }},
    {"create one block", 256, {"alpha", "", "0123456789abc"}, -1,
     [](SimpleFS& fs, uint32_t) { createText(fs, "abc"); }},
    {"create a chain", 256, {"alpha", "", "0123456789abc"}, -1,
     [](SimpleFS& fs, uint32_t) { createText(fs, nineteen); }},
    {"rewrite with the same length", 256, {"alpha", "0123456789abc", "omega"}, 1,
     [](SimpleFS& fs, uint32_t root) { writeText(fs, root, "ABCDEFGHIJKLM"); }},
    {"rewrite shorter", 256, {"alpha", "0123456789abc", "omega"}, 1,
     [](SimpleFS& fs, uint32_t root) { writeText(fs, root, "xyz"); }},
    {"rewrite longer", 256, {"alpha", "0123456789abc", "omega"}, 1,
     [](SimpleFS& fs, uint32_t root) { writeText(fs, root, nineteen + nineteen); }},
    {"rewrite with nothing", 256, {"alpha", "0123456789abc", "omega"}, 1,
     [](SimpleFS& fs, uint32_t root) { writeText(fs, root, ""); }},
    {"fill an empty file", 256, {"alpha", "", "omega"}, 1,
     [](SimpleFS& fs, uint32_t root) { writeText(fs, root, nineteen); }},
    {"remove", 256, {"alpha", "0123456789abc", "omega"}, 1, [](SimpleFS& fs, uint32_t root) { fs.remove(root); }},
    {"rewrite that runs out of blocks", 128, {"full", "0123456", "full", "full", "full", "full"}, 1,
     [](SimpleFS& fs, uint32_t root) { writeText(fs, root, nineteen); }, true},
    {"create that runs out of blocks", 128, {"full", "full", "full", "full", "full"}, -1,
     [](SimpleFS& fs, uint32_t) { createText(fs, nineteen); }, true},
};

struct Store {
    std::unique_ptr<PowerCutArray> array;
    std::unique_ptr<SimpleFS> fs;
    std::vector<uint32_t> roots;
};

Store prepare(const Scenario& scenario)
{
    Store setup;
    setup.array = std::make_unique<PowerCutArray>(scenario.size);
    setup.fs = std::make_unique<SimpleFS>(*setup.array, 0, scenario.size, true);
    for (const std::string& text : scenario.files)
        setup.roots.push_back(createText(*setup.fs, text));
    // A removal in the middle, so that allocation has to run round the table.
    const uint32_t spare = createText(*setup.fs, "gap");
    setup.fs->remove(spare);
    return setup;
}

// Runs the operation; true if it came to its end, by success or by the file system being full.
bool runUntilCut(const Scenario& scenario, Store& setup)
{
    const uint32_t target = scenario.target >= 0 ? setup.roots[scenario.target] : 0;
    try {
        scenario.operation(*setup.fs, target);
    } catch (const PowerCut&) {
        return false;
    } catch (const KT_ERROR::SFS_FileSystemFullException&) {
        EXPECT_TRUE(scenario.runsOutOfBlocks);
        return true;
    }
    EXPECT_FALSE(scenario.runsOutOfBlocks);
    return true;
}

uint32_t blocksInUse(FileArray& array, const std::array<uint32_t, 6>& info)
{
    uint32_t used = 0;
    for (uint32_t block = 0; block < info[2]; ++block)
        used += array.readByte(info[4] + 8 * block) & 1;
    return used;
}

// After the cut the store is taken up again as after a restart, and checked.
void verifyAfterRestart(const Scenario& scenario, Store& setup)
{
    FileArray restarted(scenario.size);
    for (uint32_t i = 0; i < scenario.size; ++i)
        restarted.writeByte(i, setup.array->readByte(i));
    SimpleFS fs(restarted, 0, scenario.size, false);

    SimpleFSCheckReport report;
    std::ostringstream lines;
    const uint32_t result = fs.check(&report, false, &lines);
    EXPECT_EQ(report.unknownBlocks, 0u);
    EXPECT_EQ(report.additionalRoots, 0u);
    EXPECT_EQ(report.invalidLengths, 0u);
    EXPECT_EQ(result, report.lostBlocks);

    std::set<uint32_t> others;
    for (size_t i = 0; i < scenario.files.size(); ++i) {
        if (static_cast<int>(i) == scenario.target)
            continue;
        others.insert(setup.roots[i]);
        EXPECT_EQ(readText(fs, setup.roots[i]), scenario.files[i]) << "file " << setup.roots[i];
        EXPECT_EQ(fs.fileSize(setup.roots[i]), scenario.files[i].size());
    }
    std::istringstream report_lines(lines.str());
    for (std::string line; std::getline(report_lines, line);) {
        if (line.rfind("file ", 0) != 0)
            continue;
        const uint32_t damaged = static_cast<uint32_t>(std::stoul(line.substr(5)));
        EXPECT_EQ(others.count(damaged), 0u) << line;
        if (scenario.target >= 0) {
            EXPECT_EQ(damaged, setup.roots[scenario.target]) << line;
        }
    }

    // The count of used blocks is written apart from the blocks, so a cut may leave it one off.
    std::array<uint32_t, 6> info{};
    fs.getInfo(info);
    const uint32_t used = blocksInUse(restarted, info);
    EXPECT_LE(info[3], used + 1);
    EXPECT_LE(used, info[3] + 1);

    // And the file system takes new files as before, as far as it has room.
    if (!scenario.runsOutOfBlocks) {
        const uint32_t fresh = createText(fs, "after the restart");
        EXPECT_EQ(readText(fs, fresh), "after the restart");
        for (size_t i = 0; i < scenario.files.size(); ++i) {
            if (static_cast<int>(i) != scenario.target) {
                EXPECT_EQ(readText(fs, setup.roots[i]), scenario.files[i]);
            }
        }
    }
}

}  // namespace

TEST(SimpleFSPowerCut, ACutAfterAnyWriteLeavesAtMostLostBlocksAndOtherFilesWhole)
{
    for (const Scenario& scenario : scenarios) {
        SCOPED_TRACE(scenario.name);
        Store whole = prepare(scenario);
        const uint32_t before = whole.array->writesDone();
        ASSERT_TRUE(runUntilCut(scenario, whole));
        const uint32_t writes = whole.array->writesDone() - before;
        ASSERT_GT(writes, 0u);
        for (uint32_t allowed = 0; allowed <= writes; ++allowed) {
            SCOPED_TRACE(testing::Message() << "cut after " << allowed << " of " << writes << " writes");
            Store setup = prepare(scenario);
            setup.array->cutAfter(allowed);
            EXPECT_EQ(runUntilCut(scenario, setup), allowed == writes);
            verifyAfterRestart(scenario, setup);
        }
    }
}

TEST(SimpleFSPowerCut, ACutBetweenTheBlocksOfANewFileShowsAsTheDamageOfThatFileAlone)
{
    // Root written, the block it links to not yet: check names that one file and nothing else.
    PowerCutArray array(256);
    SimpleFS fs(array, 0, 256, true);
    const uint32_t kept = createText(fs, "kept");
    const uint32_t start = array.writesDone();
    createText(fs, "0123456789");
    const uint32_t writes = array.writesDone() - start;
    fs.remove(1);
    fs.setCursor(kept);

    // cursor, used count, cursor of the next block, root: the cut falls before the second block's count.
    array.cutAfter(4);
    EXPECT_THROW(createText(fs, "0123456789"), PowerCut);
    EXPECT_EQ(writes, 9u);
    FileArray restarted(256);
    for (uint32_t i = 0; i < 256; ++i)
        restarted.writeByte(i, array.readByte(i));
    SimpleFS again(restarted, 0, 256, false);
    std::ostringstream lines;
    EXPECT_EQ(again.check(nullptr, false, &lines), 0u);
    EXPECT_EQ(lines.str(), "file 1 is damaged; block 2 shouldn't be empty\n"
                           "check done; 22 empty blocks; 2 files; 0 lost blocks\n");
}
