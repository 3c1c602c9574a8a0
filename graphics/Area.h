#pragma once
#include <cstdint>

// A rectangle of the raster by its inclusive edges.
struct Area {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    bool operator==(const Area&) const = default;
};
