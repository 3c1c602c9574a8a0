#pragma once
#include <cstdint>
#include <span>
#include <string>

#include "symbologies/ZintSymbol.h"

class GraphicsContext;

// The base of the stacked and row symbols that the library encodes, PDF417 and DataBar: one library symbol
// for the object's life, encoded anew at each paint; the painting is each symbol's own.
class ZintRowSymbol {
public:
    ZintRowSymbol(const ZintRowSymbol&) = delete;
    ZintRowSymbol& operator=(const ZintRowSymbol&) = delete;

    void setOrientation(int32_t value) { orientation = value; }
    const zint_symbol& getSymbol() const { return *symbol; }

protected:
    // `encodes` lists the symbologies of the family; `errorHead` opens every error text.
    ZintRowSymbol(const ZintSetup& setup, const ZintRecordValues& record, std::span<const int32_t> encodes,
                  const char* errorHead);
    ~ZintRowSymbol() = default;

    // Encodes into an emptied symbol and returns the library's result; a symbology the family has no encoder
    // for is refused as an invalid option.
    int encode(const std::string& data);
    // Raises the format error of `code` from `group`.
    [[noreturn]] void fail(int32_t group, int32_t code) const;

    int32_t symbology;
    int32_t height;
    int32_t module;
    ZintSymbolPointer symbol;
    int32_t orientation = 0;
    GraphicsContext* target = nullptr;

private:
    std::span<const int32_t> encodes;
    const char* errorHead;
};
