#include "symbologies/ZintSymbol.h"

#include <cstring>

ZintSymbolPointer makeZintSymbol(const ZintSetup& setup, const ZintRecordValues& record)
{
    ZintSymbolPointer symbol(zintLibrary().create());
    symbol->symbology = setup.symbology == FROM_RECORD ? record.symbology : setup.symbology;
    symbol->height = static_cast<float>(setup.recordHeight ? record.height : 0);
    symbol->whitespace_width = setup.whitespaceWidth;
    symbol->border_width = 0;
    symbol->output_options = 0;
    std::strcpy(symbol->fgcolour, "000000");
    std::strcpy(symbol->bgcolour, "ffffff");
    symbol->outfile[0] = '\0';
    symbol->primary[0] = '\0';
    symbol->scale = 1.0f;
    symbol->option_1 = setup.option1 == FROM_RECORD ? record.level : setup.option1;
    symbol->option_2 = record.option2;
    symbol->option_3 = setup.option3;
    symbol->show_hrt = setup.showHrt;
    symbol->input_mode = setup.recordInputMode ? (record.inputMode == 0 ? UNICODE_MODE : record.inputMode) : 0;
    symbol->rows = 0;
    symbol->width = setup.widthIsModule ? record.module : 0;
    return symbol;
}

// The library keeps eight modules of a row to a byte, the leftmost in the lowest bit.
bool zintModule(const zint_symbol& symbol, int32_t row, int32_t column)
{
    return ((symbol.encoded_data[row][column >> 3] >> (column & 7)) & 1) != 0;
}
