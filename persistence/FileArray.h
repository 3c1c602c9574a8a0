#pragma once
#include <cstdint>
#include <memory>

#include "persistence/PersistentArray.h"

namespace SRAM {

// The desktop stand-in: in spite of its name it keeps its bytes in memory, lost at the end of the run.
class FileArray : public PersistentArray {
public:
    explicit FileArray(uint32_t length);

    void flush(uint32_t start, uint32_t length) override;
    void writeByte(uint32_t address, uint8_t value) override;
    uint8_t readByte(uint32_t address) override;
    uint32_t size() override;

private:
    uint32_t length;
    std::unique_ptr<uint8_t[]> data;
};

}  // namespace SRAM
