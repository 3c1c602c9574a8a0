#include "symbologies/Barcode.h"

#include <algorithm>
#include <vector>

#include "errors/KT_Error.h"
#include "graphics/Image.h"

namespace {

// The symbologies print their human-readable lines in font 0.
constexpr int32_t labelFont = 0;
constexpr int32_t minimumBarHeight = 12;

// Floor division, so that a symbol left of the raster packs into negative word columns.
int32_t floorDiv32(int32_t value) { return value >= 0 ? value / 32 : -((-value + 31) / 32); }

}  // namespace

void Barcode::setParameters(const std::string& content, int32_t x, int32_t y, int32_t height,
                            int32_t quarterTurns, bool addCheckDigit, bool showText, int32_t reversed)
{
    this->x = x;
    this->y = y;
    this->height = height;
    orientation = quarterTurns * 90;
    this->addCheckDigit = addCheckDigit;
    this->showText = showText;
    this->reversed = reversed;
    data = content;
}

void Barcode::setModuleWidths(int32_t module)
{
    for (int32_t i = 0; i < 4; ++i)
        widths[i] = (i + 1) * module;
}

void Barcode::setNarrowAndWide(int32_t narrow, int32_t wide)
{
    widths[0] = narrow;
    widths[1] = wide;
}

int Barcode::checkDigit()
{
    int sumA = 0, sumB = 0;
    bool toA = true;
    for (auto c = data.rbegin(); c != data.rend(); ++c, toA = !toA)
        (toA ? sumA : sumB) += static_cast<unsigned char>(*c) - 48;
    const int rest = (3 * sumA + sumB) % 10;
    return rest == 0 ? 0 : 10 - rest;
}

void Barcode::buildBitString(int32_t typeNumber)
{
    int32_t left = 0, right = 0;
    if (reversed == 1) {
        left = quietLeft;
        right = quietRight;
    } else if (typeNumber == 1) {
        left = quietLeft;
    } else if (typeNumber == 5 || typeNumber == 6 || typeNumber == 8) {
        left = quietLeft;
        right = quietRight;
    }
    bitString.assign(static_cast<size_t>(std::max(left, 0)), '0');
    // An element digit outside 1 to 4 repeats the width before it; none comes first.
    int32_t width = 0;
    for (size_t i = 0; i < bars.size(); ++i) {
        if (bars[i] >= '1' && bars[i] <= '4')
            width = widths[bars[i] - '1'];
        bitString.append(static_cast<size_t>(std::max(width, 0)), i % 2 == 0 ? '1' : '0');
    }
    bitString.append(static_cast<size_t>(std::max(right, 0)), '0');
    if (orientation == 180)
        std::reverse(bitString.begin(), bitString.end());
}

void Barcode::orBarRows(Image& context, int32_t firstRow, int32_t rowCount, int32_t px)
{
    std::vector<uint32_t> words((bitString.size() + 31) / 32, 0u);
    for (size_t i = 0; i < bitString.size(); ++i)
        if (bitString[i] == '1')
            words[i / 32] |= 0x80000000u >> (i % 32);
    // A row without a word writes nothing, however many rows there are.
    if (words.empty())
        return;
    const int32_t column = floorDiv32(px);
    const auto shift = static_cast<uint32_t>(px - column * 32);
    // The last row is reckoned in 64 bits: a bar height that wrapped near the 32-bit limit runs down to the
    // raster's edge and fails there, instead of wrapping the loop's end. So no row past the raster is reached.
    const int64_t end = int64_t{firstRow} + rowCount;
    for (int64_t row = firstRow; row < end; ++row)
        for (size_t j = 0; j < words.size(); ++j) {
            const int32_t c = column + static_cast<int32_t>(j);
            context.orLong(static_cast<int32_t>(row), c, words[j] >> shift);
            // The spill word is written even when empty, so a symbol ending near the right edge can fail.
            if (shift != 0)
                context.orLong(static_cast<int32_t>(row), c + 1, words[j] << (32 - shift));
        }
}

void Barcode::drawBarColumns(Image& context, int32_t barHeight, int32_t px, int32_t py)
{
    const int32_t count = length();
    for (int32_t i = 0; i < count; ++i) {
        if (orientation == 90)
            context.rectangle(px + height - barHeight, py + i, barHeight, 1, bitString[i] == '1' ? 1 : 0);
        else
            context.rectangle(px, py + i, barHeight, 1, bitString[count - 1 - i] == '1' ? 1 : 0);
    }
}

void Barcode::drawBars(Image& context, int32_t barHeight, Area& rectangle, bool atOrigin)
{
    const int32_t px = atOrigin ? 0 : x;
    const int32_t py = atOrigin ? 0 : y;
    const int32_t count = length();
    switch (orientation) {
    case 0:
    case 180:
        rectangle = Area{px, py, px + count - 1, py + height - 1};
        orBarRows(context, orientation == 0 ? py : py + height - barHeight, barHeight, px);
        break;
    case 90:
    case 270:
        rectangle = Area{px, py, px + height - 1, py + count - 1};
        drawBarColumns(context, barHeight, px, py);
        break;
    default:
        break;
    }
    context.extendBand(rectangle.top, rectangle.bottom);
}

void Barcode::fillInSymbol(int32_t sx, int32_t sy, int32_t w, int32_t h, int mode, Image& context)
{
    const int32_t bx = baseX(), by = baseY(), count = length();
    switch (orientation) {
    case 0:
        context.rectangle(bx + sx, by + sy, w, h, mode);
        break;
    case 90:
        context.rectangle(bx + height - sy - h, by + sx, h, w, mode);
        break;
    case 180:
        context.rectangle(bx + count - sx - w, by + height - sy - h, w, h, mode);
        break;
    case 270:
        context.rectangle(bx + sy, by + count - sx - w, h, w, mode);
        break;
    default:
        context.rectangle(0, 0, 0, 0, mode);
        break;
    }
}

void Barcode::drawLabel(int32_t sx, int32_t sy, int32_t fontSize, int32_t font, const std::string& string,
                        int32_t spacing, Image& context)
{
    const int32_t bx = baseX(), by = baseY(), count = length();
    int32_t ax = bx + sx, ay = by + sy, rotation = 0;
    switch (orientation) {
    case 90:
        ax = bx + height - sy;
        ay = by + sx;
        rotation = 1;
        break;
    case 180:
        ax = bx + count - sx;
        ay = by + height - sy;
        rotation = 2;
        break;
    case 270:
        ax = bx + sy;
        ay = by + count - sx;
        rotation = 3;
        break;
    default:
        break;
    }
    context.printText(ax, ay, fontSize, font, string, rotation, nullptr, true, spacing, true);
}

Area Barcode::measureLabel(int32_t sx, int32_t sy, int32_t fontSize, const std::string& string, Image& context)
{
    Area measured{};
    context.printText(sx, sy, fontSize, labelFont, string, 0, &measured, true, 0, false);
    return measured;
}

int32_t Barcode::baselineFor(const Area& measured) const
{
    return measured.bottom > height ? height - (measured.bottom - height) : height;
}

void Barcode::requireBarHeight(int32_t barHeight, const char* message)
{
    if (barHeight < minimumBarHeight)
        throw KT_ERROR::render_time_error(message);
}

void Barcode::drawBarsOnly(Image& context, Area& rectangle, const char* heightMessage)
{
    requireBarHeight(height, heightMessage);
    drawBars(context, height, rectangle, reversed != 0);
}

void Barcode::drawCentredLine(Image& context, Area& rectangle, const char* heightMessage,
                              const std::function<void(int32_t barHeight)>& beforeText)
{
    if (!showText) {
        drawBarsOnly(context, rectangle, heightMessage);
        return;
    }
    const auto fontSize = static_cast<int32_t>(8.34 * widths[0] * 72 / 303 + 0.5);
    const int32_t centre = length() / 2;
    const Area measured = measureLabel(centre, height, fontSize, text, context);
    const int32_t baseline = baselineFor(measured);
    // An empty line (a Code 128 whose pairs were all lost) measures as the empty area, far out of range: the
    // sum wraps in 32 bits, which leaves the bars too low.
    const auto barHeight =
        static_cast<int32_t>(int64_t{height} - (int64_t{measured.bottom} - measured.top) - widths[0]);
    requireBarHeight(barHeight, heightMessage);
    drawBars(context, barHeight, rectangle, reversed != 0);
    if (beforeText)
        beforeText(barHeight);
    drawLabel(centre, baseline, fontSize, labelFont, text, 0, context);
}

void Barcode::paint(Image& context, Area& rectangle)
{
    if (reversed != 1) {
        draw(context, rectangle);
        return;
    }
    const bool upright = orientation == 0 || orientation == 180;
    const int32_t n = upright ? length() : height;
    const int32_t m = upright ? height : length();
    Image symbol((n / 32 + 1) * 32, m + 1);
    draw(symbol, rectangle);
    symbol.rectangle(rectangle.left, rectangle.top, rectangle.right - rectangle.left + 1,
                     rectangle.bottom - rectangle.top + 1, 2);
    context.paste(symbol, y, x);
    rectangle.left += x;
    rectangle.right += x;
    rectangle.top += y;
    rectangle.bottom += y;
}
