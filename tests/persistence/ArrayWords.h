#pragma once
// Four-byte numbers in a persistent array, in the machine's byte order, as the store keeps them.
#include <cstdint>
#include <cstring>

#include "persistence/FileArray.h"

inline uint32_t wordAt(SRAM::FileArray& array, uint32_t address)
{
    uint8_t bytes[4];
    array.readBlock(bytes, 4, address);
    uint32_t value;
    std::memcpy(&value, bytes, 4);
    return value;
}

inline void putWord(SRAM::FileArray& array, uint32_t address, uint32_t value)
{
    uint8_t bytes[4];
    std::memcpy(bytes, &value, 4);
    array.writeBlock(bytes, 4, address);
}
