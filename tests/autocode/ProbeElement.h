#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "autocode/AC_Element.h"

// An element whose answers the test sets, and which writes down what happens to it.
class ProbeElement : public KT_AC::AC_Element {
public:
    explicit ProbeElement(std::string text = "", std::vector<std::string>* journal = nullptr, std::string name = "")
        : text(std::move(text)), journal(journal), name(std::move(name))
    {
    }
    ~ProbeElement() override { note("destroyed"); }

    std::string getResult() const override { return text; }
    void update(uint32_t event, uint32_t argument) override
    {
        note("update " + std::to_string(event) + " " + std::to_string(argument));
    }
    bool isUnchanged() const override
    {
        note("isUnchanged");
        return unchanged;
    }
    bool isVariable() const override
    {
        note("isVariable");
        return variable;
    }

    using AC_Element::lookup;

    std::string text;
    bool unchanged = true;
    bool variable = true;

private:
    void note(const std::string& what) const
    {
        if (journal != nullptr)
            journal->push_back(name + " " + what);
    }

    std::vector<std::string>* journal;
    std::string name;
};
