#include "symbologies/UpcA.h"

#include "symbologies/EanUpcTables.h"

UpcA::UpcA(const std::string& content, int32_t x, int32_t y, int32_t module, int32_t height, int32_t quarterTurns,
           bool addCheckDigit, bool showText, int32_t reversed)
    : EanUpc(content, x, y, module, height, quarterTurns, addCheckDigit, showText, reversed)
{
    build(5);
}

int UpcA::validate()
{
    validateDigits(11, {"Upc-A: no data ", "Upc-A: wrong data ", "Upc-A: wrong data length"});
    return 0;
}

void UpcA::encode()
{
    const char check = checkCharacter();
    bars = eanEdgeGuard;
    appendDigits(data.substr(0, 6), nullptr);
    bars += eanCentreGuard;
    appendDigits(data.substr(6) + check, nullptr);
    bars += eanEdgeGuard;
    text = data + check;
    quietLeft = quietZone(0);
    quietRight = quietZone(1);
}

void UpcA::draw(Image& context, Area& rectangle)
{
    if (!showText) {
        drawBarsOnly(context, rectangle, "UPC-A: bar height is too small");
        return;
    }
    const int32_t m = widths[0];
    const DigitLayout layout{
        m * 33 * 72 / 977.175,
        {1, 5, 2 * m, false, 0, 0},
        {{19 * m, 35 * m}, {59 * m, 35 * m}},
        {{0, 1, 2 * m, true, 0, 0}, {1, 5, 36 * m, false, 33 * m, 4}, {6, 5, 76 * m, false, 33 * m, 4},
         {11, 1, 110 * m, true, 0, 0}}};
    drawWithDigits(context, rectangle, layout, "UPC-A: bar height is too small");
}

int32_t UpcA::quietZone(int32_t side)
{
    const int32_t m = widths[0];
    return side == 0 || side == 1 ? 9 * m : 0;
}
