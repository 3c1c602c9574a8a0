#include "graphics/TransformedContext.h"

#include <utility>

#include "graphics/GFX_Exception.h"

Matrix makeRotation(int32_t orientation, int32_t s)
{
    switch (orientation) {
    case 0:
        return Matrix{s, 0, 0, s};
    case 1:
        return Matrix{0, -s, s, 0};
    case 2:
        return Matrix{-s, 0, 0, -s};
    case 3:
        return Matrix{0, s, -s, 0};
    default:
        return Matrix{};
    }
}

TransformedContext::TransformedContext(GraphicsContext* target, Point origin, Matrix matrix)
    : target(target), origin(origin), matrix(matrix)
{
    checkOrigin();
}

TransformedContext::TransformedContext(GraphicsContext* target, Point origin, int32_t orientation)
    : target(target), origin(origin), matrix(makeRotation(orientation, 1))
{
    checkOrigin();
}

// Only the origin has to lie on the target; the rest of a symbol is the target's to refuse.
void TransformedContext::checkOrigin()
{
    if (origin.x < 0 || origin.x >= static_cast<int64_t>(target->getWidth()))
        throw GFX_OutsideContextException("");
    if (origin.y < 0 || origin.y >= static_cast<int64_t>(target->getHeight()))
        throw GFX_OutsideContextException("");
}

Point TransformedContext::map(int32_t x, int32_t y) const
{
    return Point{origin.x + matrix.a * x + matrix.b * y, origin.y + matrix.c * x + matrix.d * y};
}

int TransformedContext::getPixel(int32_t x, int32_t y)
{
    const Point p = map(x, y);
    return target->getPixel(p.x, p.y);
}

void TransformedContext::setPixel(int32_t x, int32_t y, int colour)
{
    const Point p = map(x, y);
    target->setPixel(p.x, p.y, colour);
}

// The size turns as a vector; a negative width or height draws back from the mapped corner.
void TransformedContext::rectangle(int32_t x, int32_t y, int32_t w, int32_t h, int colour)
{
    const Point corner = map(x, y);
    target->rectangle(corner.x, corner.y, matrix.a * w + matrix.b * h, matrix.c * w + matrix.d * h, colour);
}

void TransformedContext::drawText(int32_t x, int32_t y, int32_t size, int32_t fontNumber, std::string text,
                                  int32_t orientation, Area* area, int32_t alignment, int32_t spacing,
                                  bool reversed)
{
    int32_t turn = (orientation >= 1 && orientation <= 3 ? orientation * 90 : 0) + 360;
    const Matrix& m = matrix;
    if (m.b != 0 || m.c != 0) {
        if (m.a == 0 && m.d == 0) {
            if (m.b > 0 && m.c < 0)
                turn -= 90;
            else if (m.b < 0 && m.c > 0)
                turn -= 270;
        }
    } else if (m.a < 0 && m.d < 0) {
        turn -= 180;
    }
    const Point anchor = map(x, y);
    target->drawText(anchor.x, anchor.y, size, fontNumber, std::move(text), (turn % 360) / 90, area, alignment,
                     spacing, reversed);
}
