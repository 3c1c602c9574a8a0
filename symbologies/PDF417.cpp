#include "symbologies/PDF417.h"

#include <algorithm>
#include <array>

#include "graphics/GraphicsContext.h"
#include "symbologies/ZintErrorTexts.h"

namespace {

constexpr std::array<int32_t, 4> pdf417Symbologies = {BARCODE_PDF417, BARCODE_PDF417TRUNC, BARCODE_MICROPDF417,
                                                     BARCODE_HIBC_PDF};

}  // namespace

PDF417::PDF417(int32_t symbology, int32_t columns, int32_t module, int32_t height, int32_t level)
    : ZintRowSymbol(pdf417Setup,
                    ZintRecordValues{.symbology = symbology,
                                     .height = height,
                                     .level = level,
                                     .option2 = columns,
                                     .module = std::max(module, 1)},
                    pdf417Symbologies, "ERROR in PDF_417 ")
{
}

void PDF417::paint(const std::string& content, GraphicsContext& context)
{
    target = &context;
    if (symbol->rows != 0)
        paintMatrix(0);
    if (const int result = encode(content); result != 0)
        fail(ZINT_GROUP_LIBRARY, result);
    paintMatrix(1);
}

// Turned symbols read the matrix one row and one column further on than a clean mirror would, so that
// its first row and column are lost: this is how the symbol has always turned.
void PDF417::paintMatrix(int colour)
{
    const int32_t rows = symbol->rows, width = symbol->width, m = module;
    const int32_t v = height / rows;
    const bool across = orientation == 1 || orientation == 3;
    const bool mirrored = orientation == 2 || orientation == 3;
    for (int32_t r = 0; r < rows; ++r)
        for (int32_t c = 0; c < width; ++c) {
            if (!(mirrored ? zintModule(*symbol, rows - r, width - c) : zintModule(*symbol, r, c)))
                continue;
            if (across)
                target->rectangle(v * r, m * c, v, m, colour);
            else
                target->rectangle(m * c, v * r, m, v, colour);
        }
}
