#include "symbologies/UpcE.h"

#include "symbologies/EanUpcTables.h"

// The number system 0 goes in front, so that six digits of content are seven of data.
UpcE::UpcE(const std::string& content, int32_t x, int32_t y, int32_t module, int32_t height, int32_t quarterTurns,
           bool addCheckDigit, bool showText, int32_t reversed)
    : EanUpc("0" + content, x, y, module, height, quarterTurns, addCheckDigit, showText, reversed)
{
    build(6);
}

int UpcE::validate()
{
    validateDigits(7, {"Upc-E: no data ", "Upc-E: wrong data ", "Upc-E: wrong data length "});
    return 0;
}

// The check digit is the plain modulo-10 rule over the seven digits, not over the expanded UPC-A number.
// That is deliberate, although readers reject the symbols where the two differ.
void UpcE::encode()
{
    const char check = checkCharacter();
    bars = eanEdgeGuard;
    appendDigits(data.substr(1, 6), upcEParity[static_cast<size_t>(check - '0')]);
    bars += upcEEndGuard;
    text = data + check;
    quietLeft = quietZone(0);
    quietRight = quietZone(1);
}

void UpcE::draw(Image& context, Area& rectangle)
{
    if (!showText) {
        drawBarsOnly(context, rectangle, "UPC-E: bar height is too small");
        return;
    }
    const int32_t m = widths[0];
    const DigitLayout layout{m * 40 * 72 / 1172.61,
                             {1, 6, 2 * m, false, 0, 0},
                             {{12 * m, 42 * m}},
                             {{0, 1, 2 * m, true, 0, 0}, {1, 6, 33 * m, false, 40 * m, 5}, {7, 1, 64 * m, true, 0, 0}}};
    drawWithDigits(context, rectangle, layout, "UPC-E: bar height is too small");
}

int32_t UpcE::quietZone(int32_t side)
{
    const int32_t m = widths[0];
    return side == 0 ? 9 * m : side == 1 ? 7 * m : 0;
}
