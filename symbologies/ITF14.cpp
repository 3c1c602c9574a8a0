#include "symbologies/ITF14.h"

#include <algorithm>

#include "errors/KT_Error.h"
#include "symbologies/Code25Int.h"

ITF14::ITF14(const std::string& content, int32_t x, int32_t y, int32_t narrow, int32_t height,
             int32_t quarterTurns, bool, bool showText, int32_t reversed, int32_t wide)
{
    setParameters(content, x, y, height, quarterTurns, true, showText, reversed);
    setNarrowAndWide(narrow, wide);
    validate();
    encode();
    buildBitString(8);
}

int ITF14::validate()
{
    if (data.size() != 13)
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("ITF-14: data length is", data.size(), " instead of 13"));
    for (char c : data)
        if (c < '0' || c > '9')
            throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("ITF-14: non digit data ", c));
    return 0;
}

void ITF14::encode()
{
    data += static_cast<char>(checkDigit() + 48);
    bars = Code25Int::interleave(data);
    quietLeft = quietZone(0);
    quietRight = quietZone(1);
    text = data;
}

void ITF14::draw(Image& context, Area& rectangle)
{
    drawCentredLine(context, rectangle, "ITF-14: bar height is too small",
                    [&](int32_t barHeight) { drawBearers(context, barHeight); });
}

int32_t ITF14::quietZone(int32_t side) const
{
    const int32_t frame = 2 * widths[0];
    return side == 0 || side == 1 ? std::max(10 * widths[0], 30) + frame : frame;
}

void ITF14::drawBearers(Image& context, int32_t barHeight)
{
    const auto length = static_cast<int32_t>(bitString.size());
    const int32_t b = 2 * widths[0];
    fillInSymbol(0, 0, length, b, 1, context);
    fillInSymbol(0, barHeight - b, length, b, 1, context);
    fillInSymbol(0, 0, b, barHeight - b, 1, context);
    fillInSymbol(length - b, 0, b, barHeight - b, 1, context);
}
