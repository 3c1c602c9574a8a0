#include "autocode/AC_AppendList.h"

#include <algorithm>

namespace KT_AC {

AC_AppendList::AC_AppendList(const Padding& padding) : padding(padding) {}

std::string AC_AppendList::getResult() const
{
    std::string joined;
    for (const std::string& id : operands)
        joined += lookup(id).getResult();
    return padding.apply(joined, false);
}

uint32_t AC_AppendList::checkDepth(uint32_t level) const
{
    checkDepthLimit(level);
    uint32_t deepest = 0;
    for (const std::string& id : operands)
        deepest = std::max(deepest, lookup(id).checkDepth(level + 1));
    return deepest;
}

bool AC_AppendList::isUnchanged() const
{
    return std::all_of(operands.begin(), operands.end(), [this](const std::string& id) {
        return lookup(id).isUnchanged();
    });
}

bool AC_AppendList::isVariable() const
{
    return std::any_of(operands.begin(), operands.end(), [this](const std::string& id) {
        return lookup(id).isVariable();
    });
}

}  // namespace KT_AC
