#pragma once
#include <cstdint>
#include <memory>
#include <zint.h>

#include "symbologies/ZintLibrary.h"
#include "symbologies/ZintSetup.h"

// Deletes a symbol through the library that made it.
struct ZintSymbolDeleter {
    void operator()(zint_symbol* symbol) const { zintLibrary().destroy(symbol); }
};
using ZintSymbolPointer = std::unique_ptr<zint_symbol, ZintSymbolDeleter>;

// What a record contributes to the set-up of its symbol.
struct ZintRecordValues {
    int32_t symbology = 0;
    int32_t height = 0;
    int32_t level = 0;
    int32_t option2 = 0;
    int32_t inputMode = 0;
    int32_t module = 0;
};

ZintSymbolPointer makeZintSymbol(const ZintSetup& setup, const ZintRecordValues& record);

// Whether the module at `row`, `column` of the library's matrix is dark.
bool zintModule(const zint_symbol& symbol, int32_t row, int32_t column);
