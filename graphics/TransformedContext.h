#pragma once
#include <cstdint>
#include <string>

#include "graphics/GraphicsContext.h"

struct Matrix {
    int32_t a = 0;
    int32_t b = 0;
    int32_t c = 0;
    int32_t d = 0;
};

// The matrix of a quarter-turn count at scale s; any other count gives the zero matrix.
Matrix makeRotation(int32_t orientation, int32_t s);

// A view on another context that places, turns and scales: a symbol draws in its own module grid.
// x' = origin.x + a x + b y, y' = origin.y + c x + d y.
class TransformedContext : public GraphicsContext {
public:
    TransformedContext(GraphicsContext* target, Point origin, Matrix matrix);
    TransformedContext(GraphicsContext* target, Point origin, int32_t orientation);

    uint32_t getXOrigin() override { return static_cast<uint32_t>(origin.x); }
    uint32_t getYOrigin() override { return static_cast<uint32_t>(origin.y); }
    // Nothing sets the size of a view; it reads as empty.
    uint32_t getWidth() override { return static_cast<uint32_t>(width); }
    uint32_t getHeight() override { return static_cast<uint32_t>(height); }
    int getPixel(int32_t x, int32_t y) override;
    void setPixel(int32_t x, int32_t y, int colour) override;
    using GraphicsContext::rectangle;
    void rectangle(int32_t x, int32_t y, int32_t w, int32_t h, int colour) override;
    void drawText(int32_t x, int32_t y, int32_t size, int32_t fontNumber, std::string text, int32_t orientation,
                  Area* area, int32_t alignment, int32_t spacing, bool reversed) override;

private:
    Point map(int32_t x, int32_t y) const;
    void checkOrigin();

    GraphicsContext* target;
    Point origin;
    Matrix matrix;
    int32_t width = 0;
    int32_t height = 0;
};
