#include "persistence/FileArray.h"

#include "persistence/nullbuf.h"

namespace SRAM {

FileArray::FileArray(uint32_t length) : length(length), data(std::make_unique<uint8_t[]>(length)) {}

void FileArray::flush(uint32_t, uint32_t) {}

// An address beyond the end is not reported; the write is dropped so that no memory but ours is touched.
void FileArray::writeByte(uint32_t address, uint8_t value)
{
    if (address < length)
        data[address] = value;
}

uint8_t FileArray::readByte(uint32_t address)
{
    if (address < length)
        return data[address];
    debugStream << "Access beyond the allocated memory\n";
    return length > 0 ? data[0] : 0;
}

uint32_t FileArray::size()
{
    return length;
}

}  // namespace SRAM
