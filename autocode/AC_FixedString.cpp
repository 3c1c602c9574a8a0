#include "autocode/AC_FixedString.h"

#include <utility>

namespace KT_AC {

AC_FixedString::AC_FixedString(std::string text) : text(std::move(text)) {}

std::string AC_FixedString::getResult() const { return text; }

bool AC_FixedString::isVariable() const { return false; }

}  // namespace KT_AC
