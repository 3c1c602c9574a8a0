#pragma once
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "autocode/AC_Element.h"
#include "autocode/Padding.h"

namespace KT_FMT {
class KT_Format;
}

namespace KT_AC {

class AC_ElementCollection;

// A formula kept as text and parsed anew at each evaluation, computing in 32-bit floats.
// ESC V F is compiled instead; this evaluator waits for a record of its own.
class AC_Formula : public AC_Element {
public:
    // Evaluates once through `environment`, so that an operand missing there fails at once.
    AC_Formula(std::string formula, uint32_t precision, char decimalPoint, const Padding& padding,
               const AC_ElementCollection& environment);

    std::string getResult() const override;
    uint32_t checkDepth(uint32_t level) const override;
    bool isUnchanged() const override;

    const std::string& getFormatString() const { return formatString; }
    const std::string& getFormula() const { return formula; }
    const Padding& getPadding() const { return padding; }
    size_t countDependencies() const { return dependencies.size(); }

private:
    using Resolver = std::function<AC_Element&(const std::string&)>;

    std::string evaluate(const Resolver& resolve) const;
    std::string text(const Resolver& resolve) const;
    std::string expression(const Resolver& resolve) const;
    std::string term(const Resolver& resolve) const;
    std::string factor(const Resolver& resolve) const;
    char peek() const;
    std::string upToVT() const;

    std::string formatString;
    char decimalPoint;
    // Read with the record, applied nowhere.
    Padding padding;
    std::string formula;
    mutable uint32_t position = 0;
    mutable uint32_t maxDepth = 0;
    // Every evaluation appends the elements it read, again.
    mutable std::vector<const AC_Element*> dependencies;
};

// Reads name, precision, decimal point, padding and the formula's lines up to an empty one,
// and adds the evaluator under "F" + name.
void readTextFormulaRecord(std::istream& stream, KT_FMT::KT_Format& format);

}  // namespace KT_AC
