#include "symbologies/MicroQrCode.h"

MicroQrCode::MicroQrCode(int32_t size, int32_t module, int32_t level, int32_t inputMode)
    : ZintMatrixSymbol(microQrCodeSetup,
                       ZintRecordValues{.level = level, .option2 = size, .inputMode = inputMode, .module = module})
{
}
