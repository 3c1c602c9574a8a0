#pragma once
#include <array>
#include <cstdint>
#include <string_view>

// The content escapes that stand for Code 128 control symbols, with their token values: the
// symbol value plus 200. FNC4 shares the value of C128_A on purpose, so it acts as a change to set A.
struct Code128Control {
    std::string_view name;
    uint32_t value;
};

inline constexpr std::array<Code128Control, 11> code128Controls = {{
    {"C128_A", 301},
    {"C128_B", 300},
    {"C128_C", 299},
    {"FNC1", 302},
    {"FNC2", 297},
    {"FNC3", 296},
    {"FNC4", 301},
    {"SHIFT", 298},
    {"C128_START_A", 303},
    {"C128_START_B", 304},
    {"C128_START_C", 305},
}};
