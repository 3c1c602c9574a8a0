#pragma once
#include <string>

#include "autocode/AC_Element.h"

namespace KT_AC {

// The constant leaf: literal text of a content field, its escapes left for rendering.
class AC_FixedString : public AC_Element {
public:
    explicit AC_FixedString(std::string text);

    std::string getResult() const override;
    bool isVariable() const override;

private:
    std::string text;
};

}  // namespace KT_AC
