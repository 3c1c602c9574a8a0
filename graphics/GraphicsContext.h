#pragma once
#include <cstdint>

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
    virtual ~GraphicsContext() = default;
};
