#include "symbologies/Code25Int.h"

#include <algorithm>

#include "errors/KT_Error.h"
#include "symbologies/Code25IntTable.h"

Code25Int::Code25Int(const std::string& content, int32_t x, int32_t y, int32_t narrow, int32_t height,
                     int32_t quarterTurns, bool addCheckDigit, bool showText, int32_t reversed, int32_t wide)
{
    setParameters(content, x, y, height, quarterTurns, addCheckDigit, showText, reversed);
    setNarrowAndWide(narrow, wide);
    validate();
    encode();
    buildBitString(2);
}

int Code25Int::validate()
{
    if (data.empty())
        throw KT_ERROR::bad_escape_sequence("code 2/5 Interleaved: no data ");
    for (char c : data)
        if (c < '0' || c > '9')
            throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("code 2/5 Interleaved: non digit data ", c));
    return 0;
}

std::string Code25Int::interleave(const std::string& digits)
{
    std::string elements(code25Start);
    for (size_t i = 0; i + 1 < digits.size(); i += 2) {
        const std::string_view first = code25Patterns[digits[i] - '0'];
        const std::string_view second = code25Patterns[digits[i + 1] - '0'];
        for (size_t e = 0; e < 5; ++e) {
            elements += first[e];
            elements += second[e];
        }
    }
    elements += code25Stop;
    return elements;
}

void Code25Int::encode()
{
    if (addCheckDigit)
        data += static_cast<char>(checkDigit() + 48);
    if (data.size() % 2 != 0)
        data.insert(data.begin(), '0');
    bars = interleave(data);
    if (reversed == 1) {
        quietLeft = quietZone(0);
        quietRight = quietZone(1);
    }
    text = data;
}

void Code25Int::draw(Image& context, Area& rectangle)
{
    drawCentredLine(context, rectangle, "Code 2/5 Interleaved: bar height is too small");
}

int32_t Code25Int::quietZone(int32_t side)
{
    return side == 0 || side == 1 ? std::max(10 * widths[0], 30) : 0;
}
