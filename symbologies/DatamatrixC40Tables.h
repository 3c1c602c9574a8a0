#pragma once
#include <array>
#include <cstdint>

// The values that one character of 0 to 127 takes in C40, Text or X12: none (`count` 0) means the
// mode can't write it.
struct C40Values {
    uint8_t count;
    uint8_t first;
    uint8_t second;
};

using C40Table = std::array<C40Values, 128>;

namespace datamatrix_tables {

constexpr bool between(int c, int low, int high) { return c >= low && c <= high; }

constexpr C40Values one(int value) { return C40Values{1, static_cast<uint8_t>(value), 0}; }
constexpr C40Values two(int shift, int value)
{
    return C40Values{2, static_cast<uint8_t>(shift), static_cast<uint8_t>(value)};
}

// Shift 1 (controls) and shift 2 (punctuation) are the same in C40 and Text.
constexpr C40Values shifted(int c)
{
    if (c < 32)
        return two(0, c);
    if (between(c, 33, 47))
        return two(1, c - 33);
    if (between(c, 58, 64))
        return two(1, c - 43);
    if (between(c, 91, 95))
        return two(1, c - 69);
    return C40Values{};
}

constexpr C40Values c40(int c)
{
    if (between(c, 'A', 'Z'))
        return one(c - 51);
    if (between(c, '0', '9'))
        return one(c - 44);
    if (c == ' ')
        return one(3);
    if (c >= 96)
        return two(2, c - 96);
    return shifted(c);
}

constexpr C40Values text(int c)
{
    if (between(c, 'a', 'z'))
        return one(c - 83);
    if (between(c, '0', '9'))
        return one(c - 44);
    if (c == ' ')
        return one(3);
    if (between(c, 'A', 'Z'))
        return two(2, c - 64);
    if (c == 96)
        return two(2, 0);
    if (c >= 123)
        return two(2, c - 96);
    return shifted(c);
}

constexpr C40Values x12(int c)
{
    if (between(c, 'A', 'Z'))
        return one(c - 51);
    if (between(c, '0', '9'))
        return one(c - 44);
    switch (c) {
    case '\r':
        return one(0);
    case '*':
        return one(1);
    case '>':
        return one(2);
    case ' ':
        return one(3);
    default:
        return C40Values{};
    }
}

constexpr C40Table build(C40Values (*rule)(int))
{
    C40Table table{};
    for (int c = 0; c < 128; ++c)
        table[static_cast<size_t>(c)] = rule(c);
    return table;
}

}  // namespace datamatrix_tables

inline constexpr C40Table c40Values = datamatrix_tables::build(datamatrix_tables::c40);
inline constexpr C40Table textValues = datamatrix_tables::build(datamatrix_tables::text);
inline constexpr C40Table x12Values = datamatrix_tables::build(datamatrix_tables::x12);
