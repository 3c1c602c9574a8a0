#pragma once
#include <cstdint>
#include <string>

#include "graphics/Area.h"

struct Point {
    int32_t x;
    int32_t y;
};

// The drawing target. Colours: 0 erases, 1 inks, 2 inverts.
class GraphicsContext {
public:
    virtual uint32_t getXOrigin() = 0;
    virtual uint32_t getYOrigin() = 0;
    virtual uint32_t getWidth() = 0;
    virtual uint32_t getHeight() = 0;
    virtual int getPixel(int32_t x, int32_t y) = 0;
    virtual void setPixel(int32_t x, int32_t y, int colour) = 0;
    virtual void rectangle(Point topLeft, Point bottomRight, int colour);
    virtual void rectangle(int32_t x, int32_t y, int32_t w, int32_t h, int colour) = 0;
    virtual void rectangleCorners(int32_t x0, int32_t y0, int32_t x1, int32_t y1, int colour);
    virtual void clear();
    // Alignment 0 is left, 1 centre, 2 right; spacing is 16.16 dots; area may be null.
    virtual void drawText(int32_t x, int32_t y, int32_t size, int32_t fontNumber, std::string text,
                          int32_t orientation, Area* area, int32_t alignment, int32_t spacing, bool reversed) = 0;
    virtual ~GraphicsContext() = default;
};
