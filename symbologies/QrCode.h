#pragma once
#include <cstdint>

#include "symbologies/ZintMatrixSymbol.h"

// A QR code of the library: `size` is the version, 0 for the smallest that holds the content, `level` the error
// correction level; input mode 2 is GS1.
class QrCode : public ZintMatrixSymbol {
public:
    QrCode(int32_t size, int32_t module, int32_t level, int32_t inputMode);
};
