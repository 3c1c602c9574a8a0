#include "autocode/AC_BinaryFormula.h"

#include <algorithm>
#include <iomanip>
#include <locale>
#include <sstream>
#include <utility>

#include "errors/KT_Error.h"

namespace KT_AC {

AC_BinaryFormula::AC_BinaryFormula(uint32_t opcode, std::string left, std::string right, char decimalPoint,
                                   uint32_t precision)
    : intermediate(true),
      decimalPoint(decimalPoint),
      precision(precision),
      opcode(opcode),
      left(std::move(left)),
      right(std::move(right))
{
}

double AC_BinaryFormula::toNumber() const
{
    // Both operands are evaluated, in this order, before anything can fail here.
    const double leftValue = lookup(left).toNumber();
    const double rightValue = lookup(right).toNumber();
    switch (opcode) {
    case OPCODE_ADD:
        return leftValue + rightValue;
    case OPCODE_SUBTRACT:
        return leftValue - rightValue;
    case OPCODE_MULTIPLY:
        return leftValue * rightValue;
    case OPCODE_DIVIDE:
        if (rightValue == 0.0)
            throw KT_ERROR::render_time_error("division by zero in formula");
        return leftValue / rightValue;
    default:
        throw KT_ERROR::internal_autocode_error("formula: invalid opcode");
    }
}

std::string AC_BinaryFormula::getResult() const
{
    if (intermediate)
        throw KT_ERROR::internal_autocode_error("formula: trying to get string from intermediate result");
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << std::fixed << std::setprecision(static_cast<int>(precision)) << toNumber();
    std::string text = out.str();
    std::replace(text.begin(), text.end(), '.', decimalPoint);
    return text;
}

uint32_t AC_BinaryFormula::checkDepth(uint32_t level) const
{
    checkDepthLimit(level);
    return std::max(lookup(left).checkDepth(level + 1), lookup(right).checkDepth(level + 1));
}

bool AC_BinaryFormula::isUnchanged() const { return lookup(left).isUnchanged() && lookup(right).isUnchanged(); }

bool AC_BinaryFormula::isVariable() const { return lookup(left).isVariable() || lookup(right).isVariable(); }

}  // namespace KT_AC
