#pragma once
#include <cstdint>
#include <iosfwd>
#include <string>

#include "autocode/Padding.h"

namespace KT_FMT {
class KT_Format;
}

namespace KT_AC {

// The fields that both kinds of formula record open with.
struct FormulaHeader {
    std::string id;  // "F" + name
    uint32_t precision = 0;
    char decimalPoint = '.';
    Padding padding;
};

FormulaHeader readFormulaHeader(std::istream& stream);

// Compiles the body of an ESC V F record: one node per arithmetic operator, and an append list under
// "F" + name that joins the operands of the concatenations.
void readFormulaRecord(std::istream& stream, KT_FMT::KT_Format& format);

}  // namespace KT_AC
