#pragma once
#include <cstdint>
#include <streambuf>

namespace SRAM {
class PersistentArray;
}

// A log in a region of a persistent array: 4 bytes of put position, then the ring. The oldest text is
// overwritten; a reader runs from the oldest byte to the newest.
class RingStorageStreambuf : public std::streambuf {
public:
    RingStorageStreambuf(SRAM::PersistentArray& array, uint32_t start, uint32_t length);

protected:
    int_type overflow(int_type c) override;
    int_type underflow() override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir way, std::ios_base::openmode mode) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode mode) override;

private:
    uint32_t readPut();
    void writePut();
    void dropFetchedCharacter();
    uint32_t wrap(int64_t index) const;

    SRAM::PersistentArray* array;
    uint32_t base;
    uint32_t size;
    uint32_t put;
    uint32_t get;
    char getBuffer = 0;
};
