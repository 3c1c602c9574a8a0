#pragma once
#include <array>

#include <ft2build.h>
#include FT_FREETYPE_H

// Quarter turns clockwise, indexed by orientation, as 16.16 matrices in the order xx, xy, yx, yy.
inline constexpr FT_Fixed ONE = 0x10000;

// Turns the outlines of a face, whose y axis points up.
inline constexpr std::array<FT_Matrix, 4> faceTransforms{{
    {ONE, 0, 0, ONE},
    {0, ONE, -ONE, 0},
    {-ONE, 0, 0, -ONE},
    {0, -ONE, ONE, 0},
}};

// Carries a vector along the baseline into raster coordinates, whose y axis points down.
inline constexpr std::array<FT_Matrix, 4> penTransforms{{
    {ONE, 0, 0, ONE},
    {0, -ONE, ONE, 0},
    {-ONE, 0, 0, -ONE},
    {0, ONE, -ONE, 0},
}};
