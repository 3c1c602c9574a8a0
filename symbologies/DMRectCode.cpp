#include "symbologies/DMRectCode.h"

namespace {

ZintSetup setupFor(int32_t size)
{
    ZintSetup setup = dmRectSetup;
    if (size > 24)
        setup.option3 = DM_SQUARE;
    return setup;
}

}  // namespace

DMRectCode::DMRectCode(int32_t size, int32_t module, int32_t inputMode)
    : ZintMatrixSymbol(setupFor(size), ZintRecordValues{.option2 = size, .inputMode = inputMode, .module = module})
{
}
