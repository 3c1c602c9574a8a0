#include "autocode/AC_Formula.h"

#include <algorithm>
#include <cstdio>
#include <istream>
#include <memory>
#include <utility>

#include "autocode/AC_ElementCollection.h"
#include "autocode/FormulaReader.h"
#include "errors/KT_Error.h"
#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "format/RecordDispatch.h"

namespace KT_AC {

namespace {

bool isOneOf(char c, char first, char second) { return c == first || c == second; }

std::string printFloat(const std::string& formatString, float value)
{
    const auto widened = static_cast<double>(value);
    std::string text(static_cast<size_t>(std::snprintf(nullptr, 0, formatString.c_str(), widened)), '\0');
    std::snprintf(text.data(), text.size() + 1, formatString.c_str(), widened);
    return text;
}

}  // namespace

AC_Formula::AC_Formula(std::string formula, uint32_t precision, char decimalPoint, const Padding& padding,
                       const AC_ElementCollection& environment)
    : formatString(KT_ERROR::text("%.", precision, 'f')),
      decimalPoint(decimalPoint),
      padding(padding),
      formula(std::move(formula))
{
    evaluate([&environment](const std::string& id) -> AC_Element& { return environment.getElement(id); });
}

std::string AC_Formula::getResult() const
{
    return evaluate([this](const std::string& id) -> AC_Element& { return lookup(id); });
}

uint32_t AC_Formula::checkDepth(uint32_t level) const
{
    checkDepthLimit(level);
    return level + maxDepth + 1;
}

bool AC_Formula::isUnchanged() const
{
    return std::all_of(dependencies.begin(), dependencies.end(),
                       [](const AC_Element* element) { return element->isUnchanged(); });
}

std::string AC_Formula::evaluate(const Resolver& resolve) const
{
    position = 0;
    return text(resolve);
}

std::string AC_Formula::text(const Resolver& resolve) const
{
    std::string joined = expression(resolve);
    while (peek() == '&') {
        ++position;
        joined += expression(resolve);
    }
    return joined;
}

std::string AC_Formula::expression(const Resolver& resolve) const
{
    std::string first = term(resolve);
    if (!isOneOf(peek(), '+', '-'))
        return first;
    float value = KT_FMT::textToFloat(first);
    while (isOneOf(peek(), '+', '-')) {
        const char operation = formula[position++];
        const float operand = KT_FMT::textToFloat(term(resolve));
        value = operation == '+' ? value + operand : value - operand;
    }
    std::string printed = printFloat(formatString, value);
    const size_t point = printed.find('.');
    if (point != std::string::npos)
        printed[point] = decimalPoint;
    return printed;
}

std::string AC_Formula::term(const Resolver& resolve) const
{
    std::string first = factor(resolve);
    if (!isOneOf(peek(), '*', '/'))
        return first;
    float value = KT_FMT::textToFloat(first);
    while (isOneOf(peek(), '*', '/')) {
        const char operation = formula[position++];
        const float operand = KT_FMT::textToFloat(factor(resolve));
        // A division by zero is not caught: it yields an infinity or not-a-number.
        value = operation == '*' ? value * operand : value / operand;
    }
    return KT_FMT::floatToText(value);
}

std::string AC_Formula::factor(const Resolver& resolve) const
{
    const char kind = peek();
    if (kind != 'F' && kind != 'V')
        throw KT_ERROR::bad_escape_sequence("Missing F or V character");
    ++position;
    std::string field = upToVT();
    if (kind == 'F')
        return field;
    const AC_Element& element = resolve(field);
    maxDepth = std::max(maxDepth, element.checkDepth(0));
    dependencies.push_back(&element);
    return element.getResult();
}

char AC_Formula::peek() const { return position < formula.size() ? formula[position] : '\0'; }

std::string AC_Formula::upToVT() const
{
    const size_t end = std::min(formula.find(KT_FMT::VT, position), formula.size());
    std::string field = formula.substr(position, end - position);
    position = static_cast<uint32_t>(std::min(end + 1, formula.size()));
    return field;
}

void readTextFormulaRecord(std::istream& stream, KT_FMT::KT_Format& format)
{
    const FormulaHeader header = readFormulaHeader(stream);
    std::string formula;
    for (;;) {
        const std::string line = KT_FMT::readDelimited(stream, KT_FMT::VT);
        formula += line + KT_FMT::VT;
        if (line.empty())
            break;
    }
    AC_ElementCollection& elements = format.getElements();
    elements.addElement(header.id, std::make_unique<AC_Formula>(std::move(formula), header.precision,
                                                                header.decimalPoint, header.padding, elements));
}

}  // namespace KT_AC
