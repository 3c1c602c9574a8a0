#include "symbologies/Code39.h"

#include <algorithm>

#include "errors/KT_Error.h"
#include "symbologies/Code39Table.h"

Code39::Code39(const std::string& content, int32_t x, int32_t y, int32_t narrow, int32_t height,
               int32_t quarterTurns, bool addCheckDigit, bool showText, int32_t reversed, int32_t wide)
{
    setParameters(content, x, y, height, quarterTurns, addCheckDigit, showText, reversed);
    setNarrowAndWide(narrow, wide);
    validate();
    encode();
    buildBitString(3);
}

int Code39::validate()
{
    if (data.empty())
        throw KT_ERROR::bad_escape_sequence("code 39: no data ");
    for (char c : data)
        if (code39Reference.find(c) == std::string_view::npos)
            throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("code 39: wrong data ", c));
    return 0;
}

int Code39::checkDigit()
{
    size_t sum = 0;
    for (char c : data)
        sum += code39Reference.find(c);
    return code39Reference[sum % 43] - 48;
}

void Code39::encode()
{
    if (addCheckDigit)
        data += static_cast<char>(checkDigit() + 48);
    const std::string_view asterisk = code39Patterns[code39Characters.find('*')];
    bars.assign(asterisk);
    bars += '1';
    for (char c : data) {
        bars += code39Patterns[code39Characters.find(c)];
        bars += '1';
    }
    bars += asterisk;
    if (reversed == 1) {
        quietLeft = quietZone(0);
        quietRight = quietZone(1);
    }
    text = "*" + data + "*";
}

void Code39::draw(Image& context, Area& rectangle)
{
    drawCentredLine(context, rectangle, "Code 39: bar height is too small");
}

int32_t Code39::quietZone(int32_t side)
{
    return side == 0 || side == 1 ? std::max(10 * widths[0], 30) : 0;
}
