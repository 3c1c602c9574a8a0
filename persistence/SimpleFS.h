#pragma once
#include <array>
#include <cstdint>
#include <iosfwd>

namespace SRAM {
class PersistentArray;
}

// Where a reader stands between reads of one file.
struct ReadState {
    uint32_t block = 0;
    uint32_t phase = 0;  // 0 before the first byte, 1 within the file, 2 at the end
    uint32_t offset = 0;
};

struct SimpleFSCheckReport {
    uint32_t unknownBlocks = 0;
    uint32_t additionalRoots = 0;
    uint32_t invalidLengths = 0;
    uint32_t linksOutOfRange = 0;
    uint32_t lostBlocks = 0;
    uint32_t reserved = 0;
};

// A tiny file system of 8-byte blocks, 4 of them payload, in a region of a persistent array. Files have no
// names: a file is known by the number of its root block, which the caller keeps. No journal, no heap
// except in check.
class SimpleFS {
public:
    // Formats the region, or mounts what it holds.
    SimpleFS(SRAM::PersistentArray& array, uint32_t start, uint32_t size, bool format);

    void format();
    uint32_t create(const uint8_t* data, uint32_t length);
    void write(const uint8_t* data, uint32_t length, uint32_t root);
    // With continueReading false the read starts at the root; state may be null for a one-shot read.
    uint32_t read(uint8_t* target, uint32_t length, uint32_t root, ReadState* state, bool continueReading);
    void remove(uint32_t root);
    uint32_t fileSize(uint32_t root);
    // The most bytes a file can hold: the payloads of every block.
    uint64_t capacity() const;
    bool isRoot(uint32_t block);
    // start, size, block count, used blocks, block table, cursor; returns the bytes filled in.
    uint32_t getInfo(std::array<uint32_t, 6>& info) const;
    // The repair flag has no effect: check only reports.
    uint32_t check(SimpleFSCheckReport* report, bool repair, std::ostream* stream);
    void resetCursor();
    void setCursor(uint32_t value);
    // True from a format until the first write of a file, so that a host knows old addresses are void.
    bool isFreshlyFormatted() const { return freshlyFormatted; }

private:
    struct Block {
        uint8_t flags = 0;
        uint32_t link = 0;
        uint8_t payload[4] = {};
    };

    void mount();
    uint32_t readWord(uint32_t offset);
    void writeWord(uint32_t offset, uint32_t value);
    void writeUsedBlocks();
    uint32_t blockAddress(uint32_t block) const;
    uint8_t readFlags(uint32_t block);
    Block loadBlock(uint32_t block);
    Block takeUp(uint32_t block);
    void storeBlock(uint32_t block, const Block& content);
    void storePiece(uint32_t block, uint8_t flags, uint32_t link, const uint8_t* data, uint32_t count);
    uint32_t allocate(uint32_t excluded);
    void writeFile(const uint8_t* data, uint32_t length, uint32_t root);
    void writeEmptyFile(uint32_t root);
    void abandonWrite(uint32_t root);
    void removeChain(uint32_t block, bool tolerant);
    struct CheckState;
    void markUsedBlocks(CheckState& state);
    void followFile(CheckState& state, uint32_t file);
    void reportLostBlocks(CheckState& state);

    SRAM::PersistentArray* array;
    uint32_t start;
    uint32_t size;
    uint32_t blockTable = 0;
    uint32_t blockCount = 0;
    uint32_t usedBlocks = 0;
    bool freshlyFormatted = false;
    uint32_t cursor = 0;
};
