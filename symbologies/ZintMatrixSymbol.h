#pragma once
#include <cstdint>
#include <string>

#include "symbologies/ZintSymbol.h"

class GraphicsContext;

// The base of the matrix symbols that the library encodes: one library symbol for the object's life,
// encoded anew at each paint and turned here, module by module.
class ZintMatrixSymbol {
public:
    ZintMatrixSymbol(const ZintMatrixSymbol&) = delete;
    ZintMatrixSymbol& operator=(const ZintMatrixSymbol&) = delete;
    virtual ~ZintMatrixSymbol() = default;

    void setRotation(int32_t orientation) { rotation = orientation + 1; }
    // Clears the modules of the previous paint, encodes the content and paints its modules at the context's
    // origin. A content the library refuses leaves the symbol empty, without a word.
    void paint(const std::string& content, GraphicsContext& context);

    // The module shown at `row`, `column` under `rotation` (orientation + 1), in a matrix taken as `size`
    // square. The adapters give the symbol's width, so a wider than high symbol does not turn properly.
    static bool moduleIsSet(const zint_symbol& symbol, int32_t row, int32_t column, int32_t rotation,
                            int32_t size);

    const zint_symbol& getSymbol() const { return *symbol; }

protected:
    ZintMatrixSymbol(const ZintSetup& setup, const ZintRecordValues& record);

private:
    void encode(const std::string& content);
    void paintModules(int colour);

    GraphicsContext* target = nullptr;
    int32_t module;
    ZintSymbolPointer symbol;
    int32_t rotation = 1;
    bool firstPaint = true;
};
