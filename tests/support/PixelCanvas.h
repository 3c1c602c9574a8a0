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

    // A box record's picture: solid without thicknesses, else its left, right, top and bottom bars.
    void frame(int32_t x, int32_t y, int32_t w, int32_t h, int32_t vertical, int32_t horizontal)
    {
        if (vertical == 0 && horizontal == 0)
            fill(x, y, w, h);
        if (horizontal != 0) {
            fill(x, y, horizontal, h);
            fill(x + w - horizontal, y, horizontal, h);
        }
        if (vertical != 0) {
            fill(x, y, w, vertical);
            fill(x, y + h - vertical, w, vertical);
        }
    }

    // A graphic record's picture: byte b of row r is bytes(r, b), its top bit leftmost.
    template <class Bytes>
    void graphic(int32_t x, int32_t y, int32_t widthBytes, int32_t rows, Bytes bytes)
    {
        for (int32_t r = 0; r < rows; ++r)
            for (int32_t b = 0; b < widthBytes; ++b)
                for (int bit = 0; bit < 8; ++bit)
                    if ((bytes(r, b) >> (7 - bit)) & 1)
                        at(x + 8 * b + bit, y + r) = 1;
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
