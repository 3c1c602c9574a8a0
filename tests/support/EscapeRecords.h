#pragma once
// Record bytes for tests that build escape streams.
#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>

inline std::string numberField(int32_t value, int width = 5)
{
    std::ostringstream out;
    out << std::setw(width) << std::setfill('0') << value;
    return out.str();
}

inline std::string boxRecord(int32_t x, int32_t y, int32_t w, int32_t h, int32_t vertical, int32_t horizontal)
{
    return "\x1bL" + numberField(x) + numberField(y) + numberField(w) + numberField(h) + numberField(vertical) +
           numberField(horizontal);
}

// An ESC G record whose byte b of row r is bytes(r, b).
template <class Bytes>
std::string graphicRecord(int32_t x, int32_t y, int32_t widthBytes, int32_t rows, Bytes bytes)
{
    std::string record =
        "\x1bG" + numberField(x) + numberField(y) + numberField(widthBytes) + numberField(rows) + "#";
    for (int32_t r = 0; r < rows; ++r)
        for (int32_t b = 0; b < widthBytes; ++b)
            record.push_back(static_cast<char>(bytes(r, b)));
    return record;
}

// '|' stands for VT and '~' for ESC, so that records read as they are written.
inline std::string withControls(std::string text)
{
    for (char& c : text) {
        if (c == '|')
            c = '\x0b';
        else if (c == '~')
            c = '\x1b';
    }
    return text;
}
