#include "symbologies/Ean8.h"

#include "symbologies/EanUpcTables.h"

Ean8::Ean8(const std::string& content, int32_t x, int32_t y, int32_t module, int32_t height, int32_t quarterTurns,
           bool addCheckDigit, bool showText, int32_t reversed)
    : EanUpc(content, x, y, module, height, quarterTurns, addCheckDigit, showText, reversed)
{
    build(0);
}

int Ean8::validate()
{
    validateDigits(7, {"EAN-8: no data ", "EAN-8: wrong data ", "EAN-8: wrong data length"});
    return 0;
}

void Ean8::encode()
{
    const char check = checkCharacter();
    bars = eanEdgeGuard;
    appendDigits(data.substr(0, 4), nullptr);
    bars += eanCentreGuard;
    appendDigits(data.substr(4) + check, nullptr);
    bars += eanEdgeGuard;
    text = data + check;
    if (reversed == 1) {
        quietLeft = quietZone(0);
        quietRight = quietZone(1);
    }
}

void Ean8::draw(Image& context, Area& rectangle)
{
    if (!showText) {
        drawBarsOnly(context, rectangle, "EAN8: bar height is too small");
        return;
    }
    const int32_t m = widths[0];
    // Only a reversed EAN-8 has its quiet zone in the bit string, so only then do the digits move with it.
    const int32_t q = quietLeft;
    // The measuring anchor is 50 dots whatever the module; only the measured height is used.
    const DigitLayout layout{m * 26 * 72 / 781.74,
                             {0, 4, 50, false, 0, 0},
                             {{3 * m + q, 28 * m}, {36 * m + q, 28 * m}},
                             {{0, 4, 17 * m + q, false, 26 * m, 3}, {4, 4, 50 * m + q, false, 26 * m, 3}}};
    drawWithDigits(context, rectangle, layout, "EAN8: bar height is too small");
}

int32_t Ean8::quietZone(int32_t side)
{
    const int32_t m = widths[0];
    return side == 0 || side == 1 ? 7 * m : 0;
}
