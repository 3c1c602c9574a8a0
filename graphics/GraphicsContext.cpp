#include "graphics/GraphicsContext.h"

void GraphicsContext::rectangle(Point topLeft, Point bottomRight, int colour)
{
    rectangleCorners(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y, colour);
}

void GraphicsContext::rectangleCorners(int32_t x0, int32_t y0, int32_t x1, int32_t y1, int colour)
{
    rectangle(x0, y0, x1 - x0 + 1, y1 - y0 + 1, colour);
}

void GraphicsContext::clear()
{
    rectangle(0, 0, static_cast<int32_t>(getWidth()), static_cast<int32_t>(getHeight()), 0);
}
