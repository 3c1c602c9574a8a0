#include "symbologies/Ean13.h"

#include "symbologies/EanUpcTables.h"

Ean13::Ean13(const std::string& content, int32_t x, int32_t y, int32_t module, int32_t height,
             int32_t quarterTurns, bool addCheckDigit, bool showText, int32_t reversed)
    : EanUpc(content, x, y, module, height, quarterTurns, addCheckDigit, showText, reversed)
{
    build(1);
}

int Ean13::validate()
{
    validateDigits(12, {"EAN-13: no data ", "EAN-13: wrong data ", "EAN-13: wrong data length"});
    return 0;
}

void Ean13::encode()
{
    const char check = checkCharacter();
    bars = eanEdgeGuard;
    appendDigits(data.substr(1, 6), ean13Parity[static_cast<size_t>(data[0] - '0')]);
    bars += eanCentreGuard;
    appendDigits(data.substr(7) + check, nullptr);
    bars += eanEdgeGuard;
    text = data + check;
    quietLeft = quietZone(0);
    if (reversed == 1)
        quietRight = quietZone(1);
}

void Ean13::draw(Image& context, Area& rectangle)
{
    if (!showText) {
        // The double colon is deliberate: it tells the text-off failure from the one with text.
        drawBarsOnly(context, rectangle, "EAN13:: bar height is too small");
        return;
    }
    const int32_t m = widths[0];
    const DigitLayout layout{m * 40 * 72 / 1172.61,
                             {1, 6, 3 * m, false, 0, 0},
                             {{14 * m, 42 * m}, {61 * m, 42 * m}},
                             {{0, 1, 3 * m, false, 0, 0}, {1, 6, 35 * m, false, 40 * m, 5}, {7, 6, 82 * m, false, 40 * m, 5}}};
    drawWithDigits(context, rectangle, layout, "EAN13: bar height is too small");
}

int32_t Ean13::quietZone(int32_t side)
{
    const int32_t m = widths[0];
    return side == 0 ? 11 * m : side == 1 ? 7 * m : 0;
}
