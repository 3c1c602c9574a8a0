// SimpleFS over arbitrary store bytes: the mount, the check, and file operations on block numbers taken from
// the input, then the same operations on a freshly formatted region of the same bytes.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <vector>

#include "errors/KT_Error.h"
#include "persistence/FileArray.h"
#include "persistence/SimpleFS.h"

namespace {

uint32_t wordAt(const uint8_t* data, size_t size, size_t at)
{
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i)
        value |= uint32_t{at + i < size ? data[at + i] : uint8_t{0}} << (8 * i);
    return value;
}

void operate(SimpleFS& fs, const uint8_t* data, size_t size)
{
    SimpleFSCheckReport report;
    std::ostringstream lines;
    fs.check(&report, false, &lines);
    std::array<uint32_t, 6> info{};
    fs.getInfo(info);
    // Each step is a byte naming the operation and a byte naming the block, from the end of the input.
    uint8_t buffer[64];
    for (size_t at = size; at >= 2 && at > size - 64; at -= 2) {
        const uint32_t block = data[at - 1] % 24;
        try {
            switch (data[at - 2] % 7) {
            case 0: fs.read(buffer, sizeof buffer, block, nullptr, false); break;
            case 1: fs.fileSize(block); break;
            case 2: fs.isRoot(block); break;
            case 3: fs.remove(block); break;
            case 4: fs.write(data, static_cast<uint32_t>(std::min<size_t>(size, 40)), block); break;
            case 5: fs.create(data, data[at - 1] % 30); break;
            default: fs.check(&report, false, &lines); break;
            }
        } catch (const KT_ERROR::kt_exception&) {
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // The region is the whole array, and the size it is mounted with is the one its header claims.
    const auto length = static_cast<uint32_t>(std::max<size_t>(size, 128));
    SRAM::FileArray array(length);
    array.writeBlock(data, static_cast<uint32_t>(size), 0);
    try {
        SimpleFS fs(array, 0, wordAt(data, size, 8), false);
        operate(fs, data, size);
    } catch (const KT_ERROR::kt_exception&) {
    }
    try {
        SimpleFS fs(array, 0, length, true);
        operate(fs, data, size);
    } catch (const KT_ERROR::kt_exception&) {
    }
    return 0;
}
