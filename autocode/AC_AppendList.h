#pragma once
#include <cstdint>
#include <deque>
#include <string>

#include "autocode/AC_Element.h"
#include "autocode/Padding.h"

namespace KT_AC {

// Joins the results of its operands and pads the joined text.
class AC_AppendList : public AC_Element {
public:
    AC_AppendList() = default;
    explicit AC_AppendList(const Padding& padding);

    std::string getResult() const override;
    uint32_t checkDepth(uint32_t level) const override;
    bool isUnchanged() const override;
    bool isVariable() const override;

    const Padding& getPadding() const { return padding; }
    // The formula reader fills the list from the back of its text, hence the deque.
    std::deque<std::string>& getOperands() { return operands; }
    const std::deque<std::string>& getOperands() const { return operands; }

private:
    Padding padding;
    std::deque<std::string> operands;
};

}  // namespace KT_AC
