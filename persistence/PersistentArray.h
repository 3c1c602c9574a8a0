#pragma once
#include <cstdint>
#include <iosfwd>

namespace SRAM {

// A flat byte store that keeps its content over a restart; everything persistent sits on this face.
class PersistentArray {
public:
    virtual void flush(uint32_t start, uint32_t length) = 0;
    virtual void writeByte(uint32_t address, uint8_t value) = 0;
    virtual uint8_t readByte(uint32_t address) = 0;
    virtual uint32_t size() = 0;
    virtual void clear();
    virtual ~PersistentArray() = default;
    // A real device may do better than these byte loops; nothing above relies on them.
    virtual uint32_t writeBlock(const uint8_t* source, uint32_t length, uint32_t address);
    virtual uint32_t readBlock(uint8_t* target, uint32_t length, uint32_t address);
};

// Destructive: leaves pseudo-random bytes behind. Returns the number of bad cells; report may be null.
uint32_t randomTest(PersistentArray& array, uint32_t start, uint32_t length, std::ostream* report,
                    uint32_t maximumLines);

// Keeps the memory's content. Returns the number of bad cells.
uint32_t patternTest(PersistentArray& array, uint32_t start, uint32_t length, std::ostream& report,
                     uint32_t maximumLines);

}  // namespace SRAM
