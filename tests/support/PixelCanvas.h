#pragma once
// A plain pixel grid that tests paint by hand, to compare a raster against.
#include <cstdint>
#include <vector>

#include "graphics/Image.h"

struct PixelCanvas {
    int32_t width;
    int32_t height;
    std::vector<int> pixels;

    PixelCanvas(int32_t width, int32_t height)
        : width(width), height(height), pixels(static_cast<size_t>(width) * static_cast<size_t>(height), 0)
    {
    }

    int& at(int32_t x, int32_t y) { return pixels[static_cast<size_t>(y) * width + x]; }

    // Inks (or with `invert`, flips) the dots x .. x + w - 1, y .. y + h - 1 that lie on the grid.
    void fill(int32_t x, int32_t y, int32_t w, int32_t h, bool invert = false)
    {
        for (int32_t py = y; py < y + h; ++py)
            for (int32_t px = x; px < x + w; ++px)
                if (px >= 0 && py >= 0 && px < width && py < height)
                    at(px, py) = invert ? 1 - at(px, py) : 1;
    }

    static PixelCanvas of(Image& image)
    {
        PixelCanvas canvas(static_cast<int32_t>(image.getWidth()), static_cast<int32_t>(image.getHeight()));
        for (int32_t y = 0; y < canvas.height; ++y)
            for (int32_t x = 0; x < canvas.width; ++x)
                canvas.at(x, y) = image.getPixel(x, y);
        return canvas;
    }

    bool operator==(const PixelCanvas& other) const = default;
};
