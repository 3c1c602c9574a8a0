#include "persistence/SimpleFS.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <ostream>
#include <utility>
#include <vector>

#include "errors/KT_Error.h"
#include "persistence/PersistentArray.h"

using namespace KT_ERROR;

namespace {

constexpr uint32_t magicNumber = 0xA37F7B0E;
constexpr uint32_t versionNumber = 0;
constexpr uint32_t smallestSize = 128;
constexpr uint32_t blockLength = 8;

// Header words, by their offset from the region's start.
constexpr uint32_t magicOffset = 0;
constexpr uint32_t versionOffset = 4;
constexpr uint32_t sizeOffset = 8;
constexpr uint32_t blockCountOffset = 12;
constexpr uint32_t usedBlocksOffset = 16;
constexpr uint32_t blockTableOffset = 20;
constexpr uint32_t cursorOffset = 24;
constexpr uint32_t headerLength = 28;

// Bits of a block's flags byte.
constexpr uint8_t usedBit = 0x01;
constexpr uint8_t typeBits = 0x06;
constexpr uint8_t rootBit = 0x08;
constexpr uint8_t rootMask = 0x09;
constexpr uint8_t chainMask = 0xE1;  // used with length 0: the link goes on
constexpr uint8_t innerFlags = 0x01;
constexpr uint8_t emptyFileFlags = 0xE9;
constexpr uint32_t lengthShift = 5;
constexpr uint32_t emptyFileLength = 7;
constexpr uint32_t payloadLength = 4;

uint32_t lengthBits(uint8_t flags)
{
    return flags >> lengthShift;
}

bool isUsed(uint8_t flags)
{
    return (flags & usedBit) != 0;
}

bool goesOn(uint8_t flags)
{
    return (flags & chainMask) == innerFlags;
}

// A free block passes: only used blocks carry a type.
void checkType(uint8_t flags)
{
    if (isUsed(flags) && (flags & typeBits) != 0)
        throw KT_ERROR::SFS_Exception("encountered wrong block type (not 00)");
}

}  // namespace

SimpleFS::SimpleFS(SRAM::PersistentArray& array, uint32_t start, uint32_t size, bool format)
    : array(&array), start(start), size(size)
{
    if (format)
        this->format();
    else
        mount();
}

uint32_t SimpleFS::readWord(uint32_t offset)
{
    uint8_t bytes[4];
    array->readBlock(bytes, 4, start + offset);
    uint32_t value;
    std::memcpy(&value, bytes, 4);
    return value;
}

void SimpleFS::writeWord(uint32_t offset, uint32_t value)
{
    uint8_t bytes[4];
    std::memcpy(bytes, &value, 4);
    array->writeBlock(bytes, 4, start + offset);
}

void SimpleFS::writeUsedBlocks()
{
    writeWord(usedBlocksOffset, usedBlocks);
}

// A failed mount only reads: whether to format instead is the caller's decision.
void SimpleFS::mount()
{
    const uint32_t magic = readWord(magicOffset);
    if (magic != magicNumber)
        throw SFS_FSCannotBeRestoredException(text("SimpleFS: magic number mismatch, found ", std::hex, magic));
    const uint32_t version = readWord(versionOffset);
    if (version != versionNumber)
        throw SFS_FSCannotBeCreatedException(text("SimpleFS: version number mismatch, found", version));
    const uint32_t storedSize = readWord(sizeOffset);
    if (uint64_t{start} + storedSize > array->size())
        throw SFS_FSCannotBeCreatedException("SimpleFS: encountered filesystem exceeds size of PersistentArray");
    if (storedSize != size)
        throw SFS_FSCannotBeCreatedException("SimpleFS: trying to mount filesystem of different size");
    blockCount = readWord(blockCountOffset);
    usedBlocks = readWord(usedBlocksOffset);
    blockTable = readWord(blockTableOffset);
    cursor = readWord(cursorOffset);
}

void SimpleFS::format()
{
    const uint64_t end = uint64_t{start} + size;
    if (array->size() < end)
        throw SFS_Exception(text("physical storage too small for demanded size ", end));
    if (size < smallestSize)
        throw SFS_FSCannotBeCreatedException("file system cannot be created, storage too small");
    blockCount = (size - 56) / blockLength - 1;
    usedBlocks = 0;
    blockTable = ((start + 56) & ~(blockLength - 1)) + blockLength;
    cursor = blockCount - 1;
    const uint32_t header[] = {magicNumber, versionNumber, size, blockCount, usedBlocks, blockTable, cursor};
    for (uint32_t i = 0; i < 7; ++i)
        writeWord(4 * i, header[i]);
    static constexpr uint8_t zeros[64] = {};
    for (uint32_t offset = headerLength; offset < size;) {
        const uint32_t piece = std::min<uint32_t>(sizeof zeros, size - offset);
        array->writeBlock(zeros, piece, start + offset);
        offset += piece;
    }
    freshlyFormatted = true;
}

// Block numbers come from callers and from links on the store, so any of them may be damaged. The end of the
// persistent array is the one hard limit; within it a block beyond the table is read as any other.
uint32_t SimpleFS::blockAddress(uint32_t block) const
{
    const uint64_t address = uint64_t{blockTable} + uint64_t{blockLength} * block;
    if (address + blockLength > array->size())
        throw SFS_Exception(text("SimpleFS: block ", block, " lies beyond the end of the persistent array"));
    return static_cast<uint32_t>(address);
}

uint8_t SimpleFS::readFlags(uint32_t block)
{
    return array->readByte(blockAddress(block));
}

SimpleFS::Block SimpleFS::loadBlock(uint32_t block)
{
    uint8_t bytes[blockLength];
    array->readBlock(bytes, blockLength, blockAddress(block));
    Block content;
    content.flags = bytes[0];
    content.link = bytes[1] | (uint32_t{bytes[2]} << 8) | (uint32_t{bytes[3]} << 16);
    std::memcpy(content.payload, bytes + 4, payloadLength);
    return content;
}

SimpleFS::Block SimpleFS::takeUp(uint32_t block)
{
    const Block content = loadBlock(block);
    checkType(content.flags);
    return content;
}

// One write per block, so that a power cut leaves each block either old or new.
void SimpleFS::storeBlock(uint32_t block, const Block& content)
{
    uint8_t bytes[blockLength];
    bytes[0] = content.flags;
    bytes[1] = static_cast<uint8_t>(content.link);
    bytes[2] = static_cast<uint8_t>(content.link >> 8);
    bytes[3] = static_cast<uint8_t>(content.link >> 16);
    std::memcpy(bytes + 4, content.payload, payloadLength);
    array->writeBlock(bytes, blockLength, blockAddress(block));
}

void SimpleFS::storePiece(uint32_t block, uint8_t flags, uint32_t link, const uint8_t* data, uint32_t count)
{
    Block content;
    content.flags = flags;
    content.link = link;
    std::memcpy(content.payload, data, count);
    storeBlock(block, content);
}

bool SimpleFS::isRoot(uint32_t block)
{
    return (readFlags(block) & rootMask) == rootMask;
}

// Scans on from the block allocated last, so that new files don't always land on the same blocks.
uint32_t SimpleFS::allocate(uint32_t excluded)
{
    uint32_t wraps = 0;
    uint32_t block = cursor;
    for (;;) {
        ++block;
        if (block >= blockCount) {
            block = 0;
            ++wraps;
        }
        if (block < blockCount && !isUsed(readFlags(block)) && block != excluded)
            break;
        if (wraps >= 2)
            throw SFS_FileSystemFullException("SimpleFS: file system full");
    }
    cursor = block;
    writeWord(cursorOffset, cursor);
    return block;
}

uint32_t SimpleFS::create(const uint8_t* data, uint32_t length)
{
    const uint32_t root = allocate(UINT32_MAX);
    writeFile(data, length, root);
    return root;
}

void SimpleFS::write(const uint8_t* data, uint32_t length, uint32_t root)
{
    if (!isRoot(root))
        throw SFS_Exception("SimpleFS: not a root block");
    writeFile(data, length, root);
}

void SimpleFS::writeEmptyFile(uint32_t root)
{
    Block content = takeUp(root);
    const bool wasFree = !isUsed(content.flags);
    if (!wasFree && lengthBits(content.flags) == 0)
        removeChain(content.link, false);
    // The link and payload stay as they were; an empty file never reads them.
    content.flags = emptyFileFlags;
    storeBlock(root, content);
    if (wasFree) {
        ++usedBlocks;
        writeUsedBlocks();
    }
}

// Follows the old chain for as long as it lasts, so that a rewrite of the same length stays in place.
void SimpleFS::writeFile(const uint8_t* data, uint32_t length, uint32_t root)
{
    freshlyFormatted = false;
    if (length == 0) {
        writeEmptyFile(root);
        return;
    }
    uint32_t current = root;
    uint32_t next = root;
    bool overwriting = true;
    bool first = true;
    for (uint32_t remaining = length; remaining > 0; remaining -= payloadLength, data += payloadLength) {
        bool countedUnwritten = false;
        if (overwriting) {
            const Block old = takeUp(current);
            if (goesOn(old.flags)) {
                next = old.link;
            } else {
                overwriting = false;
                countedUnwritten = !isUsed(old.flags);
            }
        } else {
            countedUnwritten = true;
        }
        if (countedUnwritten) {
            ++usedBlocks;
            writeUsedBlocks();
        }
        const uint8_t rootFlag = first ? rootBit : 0;
        if (remaining <= payloadLength) {
            storePiece(current, static_cast<uint8_t>((remaining << lengthShift) | rootFlag | usedBit), 0, data,
                       remaining);
            if (overwriting)
                removeChain(next, false);
            return;
        }
        if (!overwriting) {
            try {
                next = allocate(current);
            } catch (const SFS_FileSystemFullException&) {
                abandonWrite(root);
                throw;
            }
        }
        storePiece(current, static_cast<uint8_t>(rootFlag | usedBit), next, data, payloadLength);
        first = false;
        current = next;
    }
}

// A write that runs out of blocks loses the whole file, root included. The count always goes down by one
// first, deliberately even where the old chain's last block was reached and nothing was counted up: the
// count then ends one below the blocks in use.
void SimpleFS::abandonWrite(uint32_t root)
{
    --usedBlocks;
    writeUsedBlocks();
    removeChain(root, true);
}

// The tolerant form stops quietly at a free block: it cleans up after a write that was cut short.
void SimpleFS::removeChain(uint32_t block, bool tolerant)
{
    for (;;) {
        const Block content = loadBlock(block);
        if (!isUsed(content.flags)) {
            if (tolerant)
                return;
            throw SFS_Exception("SimpleFS: trying to delete empty block");
        }
        checkType(content.flags);
        storeBlock(block, Block{});
        --usedBlocks;
        writeUsedBlocks();
        if (!goesOn(content.flags))
            return;
        block = content.link;
    }
}

void SimpleFS::remove(uint32_t root)
{
    removeChain(root, false);
}

uint32_t SimpleFS::read(uint8_t* target, uint32_t length, uint32_t root, ReadState* state, bool continueReading)
{
    // A read without a state of the caller's has nothing to go on from, so it starts at the root.
    ReadState local{root, 0, 0};
    ReadState& at = state != nullptr ? *state : local;
    if (!continueReading)
        at = ReadState{root, 0, 0};
    uint32_t copied = 0;
    while (at.phase != 2 && copied < length) {
        const Block content = takeUp(at.block);
        if (!isUsed(content.flags))
            throw SFS_FileNotFoundException(
                text("SimpleFS: addressed empty block in address 0x", std::hex, at.block));
        if (at.phase == 0) {
            if ((content.flags & rootBit) == 0)
                throw SFS_FileNotFoundException("SimpleFS: not a root block");
            if (content.flags == emptyFileFlags) {
                at.phase = 2;
                break;
            }
            at.phase = 1;
        }
        const uint32_t last = lengthBits(content.flags);
        // A damaged length above 4 must not reach past the payload.
        const uint32_t available = last == 0 ? payloadLength : std::min(last, payloadLength);
        while (at.offset < available && copied < length)
            target[copied++] = content.payload[at.offset++];
        if (at.offset == available) {
            if (last == 0) {
                at.block = content.link;
                at.offset = 0;
            } else {
                at.phase = 2;
            }
        }
    }
    return copied;
}

uint32_t SimpleFS::fileSize(uint32_t root)
{
    uint32_t total = 0;
    uint32_t block = root;
    // A sound chain has at most blockCount blocks; a longer walk runs in a circle.
    for (uint32_t steps = 0; steps < blockCount; ++steps) {
        const Block content = takeUp(block);
        if (!isUsed(content.flags))
            throw SFS_Exception(text("SimpleFS: querying size of empty file ", block));
        if (content.flags == emptyFileFlags)
            return 0;
        if (lengthBits(content.flags) != 0)
            return total + lengthBits(content.flags);
        total += payloadLength;
        block = content.link;
    }
    throw SFS_Exception(text("SimpleFS: chain of file ", root, " runs in a circle"));
}

uint64_t SimpleFS::capacity() const
{
    return uint64_t{blockCount} * payloadLength;
}

uint32_t SimpleFS::getInfo(std::array<uint32_t, 6>& info) const
{
    info = {start, size, blockCount, usedBlocks, blockTable, cursor};
    return 24;
}

void SimpleFS::resetCursor()
{
    cursor = blockCount - 1;
}

void SimpleFS::setCursor(uint32_t value)
{
    cursor = value;
}

struct SimpleFS::CheckState {
    SimpleFSCheckReport& report;
    std::ostream* stream;
    std::vector<uint32_t> unseen;  // one bit per used block not yet reached from a root
    uint32_t empty = 0;
    uint32_t files = 0;

    bool isUnseen(uint32_t block) const { return (unseen[block / 32] >> (block % 32)) & 1; }
    void see(uint32_t block) { unseen[block / 32] &= ~(uint32_t{1} << (block % 32)); }
};

namespace {

template <class... Pieces>
void reportLine(std::ostream* stream, const Pieces&... pieces)
{
    if (stream != nullptr)
        (*stream << ... << pieces) << std::endl;
}

}  // namespace

void SimpleFS::markUsedBlocks(CheckState& state)
{
    for (uint32_t block = 0; block < blockCount; ++block) {
        const uint8_t flags = readFlags(block);
        if (!isUsed(flags)) {
            ++state.empty;
            continue;
        }
        state.unseen[block / 32] |= uint32_t{1} << (block % 32);
        if ((flags & typeBits) != 0) {
            ++state.report.unknownBlocks;
            reportLine(state.stream, "block ", block, " is of unknown type");
        }
    }
}

void SimpleFS::followFile(CheckState& state, uint32_t file)
{
    bool atStart = true;
    uint32_t block = file;
    for (uint32_t steps = 0; steps <= blockCount; ++steps) {
        const Block content = loadBlock(block);
        if (!isUsed(content.flags)) {
            reportLine(state.stream, "file ", file, " is damaged; ", "block ", block, " shouldn't be empty");
            return;
        }
        const bool root = (content.flags & rootBit) != 0;
        if (!root && atStart)
            return;
        if (root && atStart) {
            ++state.files;
            atStart = false;
        } else if (root) {
            ++state.report.additionalRoots;
            reportLine(state.stream, "file ", file, " contains another root ", "block: ", block);
        }
        state.see(block);
        const uint32_t last = lengthBits(content.flags);
        if (last > payloadLength) {
            if (last == emptyFileLength && root)
                return;
            ++state.report.invalidLengths;
            reportLine(state.stream, "file ", file, " is damaged; contains a block (", block,
                       "), which has invalid data length");
            return;
        }
        if (last != 0)
            return;
        if (content.link >= blockCount) {
            reportLine(state.stream, "file ", file, " is damaged; follow-up points outside",
                       " of filesystem memory: ", content.link);
            // Deliberately reset rather than raised: such links don't add to the result.
            state.report.linksOutOfRange = 0;
            return;
        }
        block = content.link;
    }
    ++state.report.invalidLengths;
    reportLine(state.stream, "file ", file, " is damaged; its chain runs in a circle");
}

void SimpleFS::reportLostBlocks(CheckState& state)
{
    for (uint32_t word = 0; word < state.unseen.size(); ++word) {
        for (uint32_t bits = state.unseen[word]; bits != 0; bits &= bits - 1) {
            const uint32_t block = word * 32 + static_cast<uint32_t>(__builtin_ctz(bits));
            ++state.report.lostBlocks;
            reportLine(state.stream, "found lost block: ", block);
        }
    }
}

uint32_t SimpleFS::check(SimpleFSCheckReport* report, bool, std::ostream* stream)
{
    // A damaged header may claim more blocks than the store holds; no pass walks past its end.
    if (blockCount != 0)
        blockAddress(blockCount - 1);
    std::vector<uint32_t> unseen;
    try {
        unseen.assign(blockCount / 32 + 1, 0);
    } catch (const std::bad_alloc&) {
        return UINT32_MAX;
    }
    SimpleFSCheckReport local;
    SimpleFSCheckReport& counters = report != nullptr ? *report : local;
    counters = SimpleFSCheckReport{};
    CheckState state{counters, stream, std::move(unseen)};
    markUsedBlocks(state);
    for (uint32_t block = 0; block < blockCount; ++block) {
        if (state.isUnseen(block))
            followFile(state, block);
    }
    reportLostBlocks(state);
    reportLine(stream, "check done; ", state.empty, " empty blocks; ", state.files, " files; ",
               counters.lostBlocks, " lost blocks");
    return counters.unknownBlocks + counters.additionalRoots + counters.invalidLengths + counters.linksOutOfRange +
           counters.lostBlocks + counters.reserved;
}
