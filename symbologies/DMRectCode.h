#pragma once
#include <cstdint>

#include "symbologies/ZintMatrixSymbol.h"

// A Data Matrix of the library, for the rectangular sizes: `size` is the library's symbol size number
// (1 to 24 square, 25 to 30 rectangular, above that the extended rectangles), 0 for automatic.
class DMRectCode : public ZintMatrixSymbol {
public:
    DMRectCode(int32_t size, int32_t module, int32_t inputMode);
};
