#include "format/FormatInterface.h"

#include "errors/KT_Error.h"

namespace KT_INTERFACE {

char elementTypeToPrefix(uint32_t mask)
{
    switch (mask) {
    case ELEMENT_PROMPTED:
        return 'I';
    case ELEMENT_EXTERNAL:
        return 'X';
    case ELEMENT_COUNTER:
        return 'C';
    case ELEMENT_DATE:
        return 'D';
    case ELEMENT_FORMULA:
        return 'F';
    default:
        throw KT_ERROR::internal_autocode_error(
            KT_ERROR::text("elementTypeToPrefix() called with illegal parameter ", mask));
    }
}

}  // namespace KT_INTERFACE
