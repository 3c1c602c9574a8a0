#pragma once
#include <array>
#include <cstdint>

// One ECC 200 symbol size. `width` and `height` are the mapping matrix, without the finder patterns.
struct SizeRecord {
    int32_t id;
    int32_t width;
    int32_t height;
    int32_t regionWidth;
    int32_t regionHeight;
    int32_t dataWords;
    int32_t eccWords;
    int32_t blocks;
};

// Rows 1 to 24 are the squares from 10 x 10 to 144 x 144, rows 25 to 30 the rectangles.
inline constexpr std::array<SizeRecord, 30> datamatrixSizes = {{
    {1, 8, 8, 8, 8, 3, 5, 1},
    {2, 10, 10, 10, 10, 5, 7, 1},
    {3, 12, 12, 12, 12, 8, 10, 1},
    {4, 14, 14, 14, 14, 12, 12, 1},
    {5, 16, 16, 16, 16, 18, 14, 1},
    {6, 18, 18, 18, 18, 22, 18, 1},
    {7, 20, 20, 20, 20, 30, 20, 1},
    {8, 22, 22, 22, 22, 36, 24, 1},
    {9, 24, 24, 24, 24, 44, 28, 1},
    {10, 28, 28, 14, 14, 62, 36, 1},
    {11, 32, 32, 16, 16, 86, 42, 1},
    {12, 36, 36, 18, 18, 114, 48, 1},
    {13, 40, 40, 20, 20, 144, 56, 1},
    {14, 44, 44, 22, 22, 174, 68, 1},
    {15, 48, 48, 24, 24, 204, 84, 2},
    {16, 56, 56, 14, 14, 280, 112, 2},
    {17, 64, 64, 16, 16, 368, 144, 4},
    {18, 72, 72, 18, 18, 456, 192, 4},
    {19, 80, 80, 20, 20, 576, 224, 4},
    {20, 88, 88, 22, 22, 696, 272, 4},
    {21, 96, 96, 24, 24, 816, 336, 6},
    {22, 108, 108, 18, 18, 1050, 408, 6},
    {23, 120, 120, 20, 20, 1304, 496, 8},
    {24, 132, 132, 22, 22, 1558, 620, 8},
    {25, 16, 6, 16, 6, 5, 7, 1},
    {26, 28, 6, 14, 6, 10, 11, 1},
    {27, 24, 10, 24, 10, 16, 14, 1},
    {28, 32, 10, 16, 10, 22, 18, 1},
    {29, 32, 14, 16, 14, 32, 24, 1},
    {30, 44, 14, 22, 14, 49, 28, 1},
}};

// The rows that automatic size chooses from.
inline constexpr int32_t datamatrixSquareRows = 24;
