#pragma once
#include <cstdint>
#include <string>
#include <vector>

class Image;

namespace KT_FMT {

class KT_Format;

// The length of a test pattern in dots, the number of rows it covers; set by the storage layer.
extern uint32_t testFormatLength;

// The parameters a pattern reads; an integer or string not passed reads as 0 or "".
struct TestFormatParameters {
    const std::vector<std::string>& strings;
    const std::vector<int32_t>& integers;

    int32_t integer(size_t index) const { return index < integers.size() ? integers[index] : 0; }
    std::string string(size_t index) const { return index < strings.size() ? strings[index] : std::string(); }
};

// Paints pattern `number` (0 to 23) into the format's main image.
void paintTestFormat(uint32_t number, KT_Format& format, const TestFormatParameters& parameters);
// Throws unless the name has exactly ten characters.
void checkTestFormatName(const std::string& name);

}  // namespace KT_FMT
