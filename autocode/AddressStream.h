#pragma once
#include <cstdint>
#include <iostream>

namespace KT_AC {

// The address stream of a persistent format: SimpleFS addresses of 4 bytes in the machine's byte order, in
// record order.
inline uint32_t readAddress(std::iostream& stream)
{
    uint32_t address = 0;
    stream.read(reinterpret_cast<char*>(&address), sizeof address);
    return address;
}

inline void writeAddress(std::iostream& stream, uint32_t address)
{
    stream.write(reinterpret_cast<const char*>(&address), sizeof address);
}

}  // namespace KT_AC
