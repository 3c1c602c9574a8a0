#pragma once
#include <cstdint>
#include <string>

#include "autocode/AC_Element.h"

namespace KT_AC {

// Operators of a compiled formula, from the bottom mark of the operator stack up.
enum FormulaOpcode : uint32_t {
    OPCODE_BOTTOM = 0,
    OPCODE_CONCATENATE = 1,
    OPCODE_ADD = 2,
    OPCODE_SUBTRACT = 3,
    OPCODE_MULTIPLY = 4,
    OPCODE_DIVIDE = 5
};

// One arithmetic operator of a compiled formula over two elements named by id.
class AC_BinaryFormula : public AC_Element {
public:
    AC_BinaryFormula() = default;
    AC_BinaryFormula(uint32_t opcode, std::string left, std::string right, char decimalPoint, uint32_t precision);

    std::string getResult() const override;
    uint32_t checkDepth(uint32_t level) const override;
    bool isUnchanged() const override;
    bool isVariable() const override;
    double toNumber() const override;

    // An operand of another node computes but never prints.
    void setIntermediate(bool value) { intermediate = value; }
    bool isIntermediate() const { return intermediate; }
    uint32_t getOpcode() const { return opcode; }
    const std::string& getLeft() const { return left; }
    const std::string& getRight() const { return right; }
    char getDecimalPoint() const { return decimalPoint; }
    uint32_t getPrecision() const { return precision; }

private:
    bool intermediate = false;
    char decimalPoint = '.';
    uint32_t precision = 0;
    uint32_t opcode = OPCODE_ADD;
    // No real id can match the defaults.
    std::string left = "_$%&L";
    std::string right = "_$%&R";
};

}  // namespace KT_AC
