#pragma once
#include <cstdint>
#include <string>

#include "symbologies/ZintRowSymbol.h"

// PDF417, its truncated form, Micro PDF417 and HIBC PDF417 of the library. The rows share the height
// evenly; the symbol turns by its own reading of the matrix.
class PDF417 : public ZintRowSymbol {
public:
    // `module` is the width of a module in dots, 0 or less taken as 1; `columns` is the library's
    // option_2 and `level` its security level.
    PDF417(int32_t symbology, int32_t columns, int32_t module, int32_t height, int32_t level);

    // Clears the previous symbol, encodes the content and paints it at the context's origin. A refused
    // content raises a format error.
    void paint(const std::string& content, GraphicsContext& context);

private:
    void paintMatrix(int colour);
};
