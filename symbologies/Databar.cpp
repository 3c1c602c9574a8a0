#include "symbologies/Databar.h"

#include <algorithm>
#include <array>

#include "format/gs1/AiNumberReplace.h"
#include "graphics/Image.h"
#include "symbologies/ZintErrorTexts.h"

namespace {

constexpr std::array<int32_t, 6> databarSymbologies = {
    BARCODE_RSS14, BARCODE_RSS_LTD, BARCODE_RSS_EXP, BARCODE_RSS14STACK, BARCODE_RSS14STACK_OMNI, BARCODE_RSS_EXPSTACK};

bool isStacked(int32_t symbology)
{
    return symbology == BARCODE_RSS14STACK || symbology == BARCODE_RSS14STACK_OMNI ||
           symbology == BARCODE_RSS_EXPSTACK;
}

}  // namespace

Databar::Databar(int32_t symbology, int32_t height, int32_t module, int32_t textHeight, int32_t option)
    : ZintRowSymbol(databarSetup,
                    ZintRecordValues{.symbology = symbology, .height = height, .option2 = option, .module = module},
                    databarSymbologies, "ERROR in Databar "),
      textHeight(textHeight),
      separatorHeight(module)
{
}

void Databar::paint(Image& image, const std::string& content, GraphicsContext& context)
{
    target = &context;
    std::string data = content;
    if (symbology == BARCODE_RSS_EXP || symbology == BARCODE_RSS_EXPSTACK)
        if (const int result = KT_FMT::ai_number_replace(data, "<FNC1>", "["); result != 0)
            fail(ZINT_GROUP_REWRITE, result);
    if (symbol->rows != 0)
        paintRows(0);
    const int result = encode(data);
    // A warning leaves rows in the symbol, which the next paint clears: their heights have to be known.
    if (symbol->rows != rows)
        rebuildRowHeights();
    if (result != 0)
        fail(ZINT_GROUP_LIBRARY, result);
    paintRows(1);
    if (textHeight != 0 && !isStacked(symbology))
        paintText(image, context);
}

void Databar::rebuildRowHeights()
{
    rows = symbol->rows;
    const int32_t separator = separatorHeight;
    switch (symbology) {
    case BARCODE_RSS14STACK:
        rowHeights = {height / 13 * 5, separator, height / 13 * 7};
        break;
    case BARCODE_RSS14STACK_OMNI: {
        const int32_t h = (height - 3 * separator) / 2;
        rowHeights = {h, separator, separator, separator, h};
        break;
    }
    case BARCODE_RSS_EXPSTACK: {
        // Data rows at every fourth row, three separator rows between them.
        const int32_t groups = rows / 4;
        const int32_t h = (height - groups * 3 * separator) / (groups + 1);
        rowHeights.assign(static_cast<size_t>(rows), separator);
        for (int32_t r = 0; r < rows; r += 4)
            rowHeights[static_cast<size_t>(r)] = h;
        break;
    }
    default:
        rowHeights.assign(static_cast<size_t>(rows), height);
    }
}

// Rows go bottom first where the symbol's foot points up or left.
void Databar::paintRows(int colour)
{
    const bool bottomFirst = orientation == 1 || orientation == 2;
    int32_t offset = 0;
    for (int32_t i = 0; i < symbol->rows; ++i) {
        const int32_t r = bottomFirst ? symbol->rows - 1 - i : i;
        const int32_t rowHeight = rowHeights[static_cast<size_t>(r)];
        int32_t length = 0;
        for (int32_t c = 0; c <= symbol->width; ++c) {
            if (c < symbol->width && zintModule(*symbol, r, c)) {
                ++length;
                continue;
            }
            if (length != 0)
                paintRun(c, length, offset, rowHeight, colour);
            length = 0;
        }
        offset += rowHeight;
    }
}

// A run of `length` modules that ends before column `end`; `offset` is how far the rows before it reach.
void Databar::paintRun(int32_t end, int32_t length, int32_t offset, int32_t rowHeight, int colour)
{
    const int32_t m = module, span = symbol->width * m;
    switch (orientation) {
    case 1:
        target->rectangle(textHeight + offset, m * (end - length), rowHeight, m * length, colour);
        break;
    case 2:
        target->rectangle(span - m * end, textHeight + offset, m * length, rowHeight, colour);
        break;
    case 3:
        target->rectangle(offset, span - m * end, rowHeight, m * length, colour);
        break;
    default:
        target->rectangle(m * (end - length), offset, m * length, rowHeight, colour);
    }
}

// The line fills the symbol's width, but stays within its band.
void Databar::paintText(Image& image, GraphicsContext& context)
{
    const int32_t m = module, half = symbol->width * m / 2;
    const auto x = static_cast<int32_t>(context.getXOrigin()), y = static_cast<int32_t>(context.getYOrigin());
    const auto base = static_cast<int32_t>(8.34 * m * 72 / 303 + 0.5);
    int32_t ax = x + half, ay = static_cast<int32_t>(y + height + 0.9 * textHeight);
    switch (orientation) {
    case 1:
        ax = static_cast<int32_t>(x + 0.1 * textHeight);
        ay = y + half;
        break;
    case 2:
        ay = static_cast<int32_t>(y + 0.1 * textHeight);
        break;
    case 3:
        ax = static_cast<int32_t>(x + height + 0.9 * textHeight);
        ay = y + half;
        break;
    default:
        break;
    }
    const std::string line(reinterpret_cast<const char*>(symbol->text));
    Area measured{};
    image.printText(ax, ay, base, 0, line, orientation, &measured, true, 0, false);
    const bool across = orientation == 1 || orientation == 3;
    const int32_t extent = across ? measured.bottom - measured.top : measured.right - measured.left;
    // Without a font there is nothing to fit.
    if (extent <= 0)
        return;
    const int32_t cap = static_cast<int32_t>((0.9 * textHeight - m) / 3);
    const int32_t size = std::min(base * symbol->width * m / extent, cap);
    image.printText(ax, ay, size, 0, line, orientation, nullptr, true, 0, true);
}
