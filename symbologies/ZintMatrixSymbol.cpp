#include "symbologies/ZintMatrixSymbol.h"

#include "format/gs1/AiNumberReplace.h"
#include "graphics/GraphicsContext.h"

ZintMatrixSymbol::ZintMatrixSymbol(const ZintSetup& setup, const ZintRecordValues& record)
    : module(record.module), symbol(makeZintSymbol(setup, record))
{
}

bool ZintMatrixSymbol::moduleIsSet(const zint_symbol& symbol, int32_t row, int32_t column, int32_t rotation,
                                   int32_t size)
{
    switch (rotation) {
    case 2:
        return zintModule(symbol, size - 1 - column, row);
    case 3:
        return zintModule(symbol, size - 1 - row, size - 1 - column);
    case 4:
        return zintModule(symbol, column, size - 1 - row);
    default:
        return zintModule(symbol, row, column);
    }
}

void ZintMatrixSymbol::paint(const std::string& content, GraphicsContext& context)
{
    // A content that opens with the escape of FNC1 at the first paint makes this a GS1 symbol for good.
    if (firstPaint) {
        firstPaint = false;
        if (symbol->input_mode != GS1_MODE && content.size() >= 7 && content.compare(1, 6, "<FNC1>") == 0)
            symbol->input_mode = GS1_MODE;
    }
    target = &context;
    if (symbol->rows != 0)
        paintModules(0);
    encode(content);
    paintModules(1);
}

// The library adds a new matrix to whatever its symbol holds, so the old one goes first. The result of the
// encoder is not looked at: a refused content is simply not there.
void ZintMatrixSymbol::encode(const std::string& content)
{
    zintLibrary().clear(symbol.get());
    std::string data = content;
    if (symbol->input_mode == GS1_MODE)
        KT_FMT::ai_number_replace(data, "<FNC1>", "[");
    zintLibrary().encode(symbol.get(), reinterpret_cast<const unsigned char*>(data.data()),
                         static_cast<int>(data.size()));
}

void ZintMatrixSymbol::paintModules(int colour)
{
    for (int32_t r = 0; r < symbol->rows; ++r)
        for (int32_t c = 0; c < symbol->width; ++c) {
            if (!moduleIsSet(*symbol, r, c, rotation, symbol->width))
                continue;
            for (int32_t j = 0; j < module; ++j)
                for (int32_t k = 0; k < module; ++k)
                    target->setPixel(c * module + k, r * module + j, colour);
        }
}
