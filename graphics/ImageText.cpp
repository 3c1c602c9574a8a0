#include <utility>

#include "fonts/Font.h"
#include "graphics/Image.h"

void Image::drawText(int32_t x, int32_t y, int32_t size, int32_t fontNumber, std::string text, int32_t orientation,
                     Area* area, int32_t alignment, int32_t spacing, bool reversed)
{
    Area localArea{};
    Area& box = area != nullptr ? *area : localArea;
    processFont.drawText(x, y, fontNumber, size, std::move(text), orientation, &box, this, alignment, spacing,
                         reversed);
    extendBand(box.top, box.bottom);
}

void Image::printText(int32_t x, int32_t y, int32_t size, int32_t fontNumber, const std::string& text,
                      int32_t orientation, Area* area, bool centred, int32_t spacing, bool paint)
{
    Area localArea{};
    Area& box = area != nullptr ? *area : localArea;
    // A measuring call widens the band too, as a painting one does.
    processFont.drawText(x, y, fontNumber, size, text, orientation, &box, paint ? this : nullptr, centred ? 1 : 0,
                         spacing, false);
    extendBand(box.top, box.bottom);
}
