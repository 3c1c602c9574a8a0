#include "autocode/AC_Element.h"

#include <locale>
#include <sstream>

#include "autocode/AC_ElementCollection.h"
#include "errors/KT_Error.h"

namespace KT_AC {

namespace {

constexpr uint32_t depthLimit = 51;

}  // namespace

void AC_Element::checkDepthLimit(uint32_t level)
{
    if (level >= depthLimit)
        failTooDeep();
}

void AC_Element::failTooDeep()
{
    throw KT_ERROR::internal_autocode_error("exceeded maximum depth of autocode tree");
}

void AC_Element::update(uint32_t, uint32_t) {}

uint32_t AC_Element::checkDepth(uint32_t level) const
{
    checkDepthLimit(level);
    return level + 1;
}

bool AC_Element::isUnchanged() const { return true; }

bool AC_Element::isVariable() const { return true; }

double AC_Element::toNumber() const
{
    std::string text = getResult();
    // Deliberate: one character is worth 0, so a single-digit operand counts as zero.
    if (text.size() < 2)
        return 0;
    // Only the first comma is a decimal point; a second one makes the conversion fail.
    const size_t comma = text.find(',');
    if (comma != std::string::npos)
        text[comma] = '.';
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    double value = 0;
    in >> value;
    if (!in.eof())
        throw KT_ERROR::not_a_number(KT_ERROR::text("could not convert to number: ", text));
    return value;
}

AC_Element& AC_Element::lookup(const std::string& id) const
{
    if (ac_environment == nullptr)
        throw KT_ERROR::internal_autocode_error("tried to access uninitialised AC_Element::ac_environment variable");
    return ac_environment->getElement(id);
}

}  // namespace KT_AC
