#include "autocode/FormulaReader.h"

#include <algorithm>
#include <istream>
#include <map>
#include <memory>
#include <stack>
#include <string>

#include "autocode/AC_AppendList.h"
#include "autocode/AC_BinaryFormula.h"
#include "errors/KT_Error.h"
#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "format/RecordDispatch.h"

namespace KT_AC {

namespace {

uint32_t readOperator(std::istream& stream)
{
    switch (const char c = KT_FMT::readByte(stream)) {
    case '&': return OPCODE_CONCATENATE;
    case '+': return OPCODE_ADD;
    case '-': return OPCODE_SUBTRACT;
    case '*': return OPCODE_MULTIPLY;
    case '/': return OPCODE_DIVIDE;
    default: throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("Formula: expected operator, got: ", c));
    }
}

// Whether operator a binds before b: arithmetic before concatenation, products before sums.
bool takesPrecedence(uint32_t a, uint32_t b)
{
    switch (a) {
    case OPCODE_CONCATENATE: return b == OPCODE_BOTTOM;
    case OPCODE_ADD:
    case OPCODE_SUBTRACT: return b == OPCODE_BOTTOM || b == OPCODE_CONCATENATE;
    case OPCODE_MULTIPLY:
    case OPCODE_DIVIDE: return b != OPCODE_MULTIPLY && b != OPCODE_DIVIDE;
    default: return false;
    }
}

class FormulaCompiler {
public:
    FormulaCompiler(std::istream& stream, KT_FMT::KT_Format& format) : stream(stream), format(format) {}

    void compile()
    {
        const FormulaHeader header = readFormulaHeader(stream);
        precision = header.precision;
        decimalPoint = header.decimalPoint;
        auto list = std::make_unique<AC_AppendList>(header.padding);
        readOperands();
        joinOperands(*list);
        format.getElements().addElement(header.id, std::move(list));
    }

private:
    void readOperands()
    {
        operand_stack.push(KT_FMT::readContentField(stream, format));
        // A record that ends with the stream is compiled with what it has.
        while (stream.peek() != KT_FMT::VT && stream.good()) {
            const uint32_t next_operator = readOperator(stream);
            while (!takesPrecedence(next_operator, operator_stack.top()) &&
                   !(next_operator == OPCODE_CONCATENATE && operator_stack.top() == OPCODE_CONCATENATE))
                reduce();
            operator_stack.push(next_operator);
            operand_stack.push(KT_FMT::readContentField(stream, format));
        }
        stream.get();
        // Concatenations and the bottom mark stay behind: the list joins what they separate.
        while (takesPrecedence(operator_stack.top(), OPCODE_CONCATENATE))
            reduce();
    }

    void reduce()
    {
        const uint32_t opcode = operator_stack.top();
        operator_stack.pop();
        std::string right = operand_stack.top();
        operand_stack.pop();
        std::string left = operand_stack.top();
        operand_stack.pop();
        auto node = std::make_unique<AC_BinaryFormula>(opcode, std::move(left), std::move(right), decimalPoint,
                                                       precision);
        AC_BinaryFormula& made = *node;
        AC_ElementCollection& elements = format.getElements();
        std::string id = elements.generateId();
        elements.addElement(id, std::move(node));
        math_funs.emplace(id, &made);
        operand_stack.push(std::move(id));
    }

    // The stack holds the operands last first, so each goes to the front of the list.
    void joinOperands(AC_AppendList& list)
    {
        while (!operand_stack.empty()) {
            const auto node = math_funs.find(operand_stack.top());
            if (node != math_funs.end())
                node->second->setIntermediate(false);
            list.getOperands().push_front(operand_stack.top());
            operand_stack.pop();
        }
    }

    std::istream& stream;
    KT_FMT::KT_Format& format;
    uint32_t precision = 0;
    char decimalPoint = '.';
    std::stack<std::string> operand_stack;
    std::stack<uint32_t> operator_stack{{OPCODE_BOTTOM}};
    // The nodes made here, by id: the ones left on the operand stack at the end are no intermediates.
    std::map<std::string, AC_BinaryFormula*> math_funs;
};

}  // namespace

FormulaHeader readFormulaHeader(std::istream& stream)
{
    FormulaHeader header;
    header.id = "F" + KT_FMT::readDelimited(stream, KT_FMT::VT);
    // A negative precision prints no decimals.
    header.precision = static_cast<uint32_t>(std::max(0, KT_FMT::readNumber(stream, 2, true)));
    header.decimalPoint = KT_FMT::readByte(stream);
    header.padding = KT_FMT::readPadding(stream);
    return header;
}

void readFormulaRecord(std::istream& stream, KT_FMT::KT_Format& format) { FormulaCompiler(stream, format).compile(); }

}  // namespace KT_AC
