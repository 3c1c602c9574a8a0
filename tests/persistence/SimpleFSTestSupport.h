#pragma once
// Whole files of text in and out of a SimpleFS, for tests.
#include <cstdint>
#include <string>

#include "persistence/SimpleFS.h"

inline uint32_t createText(SimpleFS& fs, const std::string& text)
{
    return fs.create(reinterpret_cast<const uint8_t*>(text.data()), static_cast<uint32_t>(text.size()));
}

inline void writeText(SimpleFS& fs, uint32_t root, const std::string& text)
{
    fs.write(reinterpret_cast<const uint8_t*>(text.data()), static_cast<uint32_t>(text.size()), root);
}

// Reads in pieces of 50 bytes until the read says the file has ended.
inline std::string readText(SimpleFS& fs, uint32_t root)
{
    std::string result;
    ReadState state;
    uint8_t piece[50];
    bool going = false;
    do {
        const uint32_t got = fs.read(piece, sizeof piece, root, &state, going);
        result.append(reinterpret_cast<const char*>(piece), got);
        going = true;
    } while (state.phase != 2);
    return result;
}
