#pragma once
#include <cstdint>
#include <string>

namespace KT_AC {

class AC_ElementCollection;

// Events that the format raises on every element through the collection.
inline constexpr uint32_t EVENT_PAINTED = 0;
inline constexpr uint32_t EVENT_PRINTED = 1;
inline constexpr uint32_t EVENT_TRIGGER = 2;
inline constexpr uint32_t EVENT_DELETE = 3;
inline constexpr uint32_t EVENT_TICK = 4;

// A node of the content tree. Nothing is cached: every result is computed anew from the leaves,
// and operands are named by id so that an element may be read before the element it names.
class AC_Element {
public:
    AC_Element() = default;
    AC_Element(const AC_Element&) = delete;
    AC_Element& operator=(const AC_Element&) = delete;
    virtual ~AC_Element() = default;

    virtual std::string getResult() const = 0;
    virtual void update(uint32_t event, uint32_t argument);
    // Guards against trees that are too deep or refer to themselves.
    virtual uint32_t checkDepth(uint32_t level) const;
    virtual bool isUnchanged() const;
    virtual bool isVariable() const;
    virtual double toNumber() const;

protected:
    AC_Element& lookup(const std::string& id) const;
    // Fails with the depth message when level is beyond the limit of the tree.
    static void checkDepthLimit(uint32_t level);
    // The depth message, for a tree that leads back to where it started.
    [[noreturn]] static void failTooDeep();

private:
    friend class AC_ElementCollection;
    AC_ElementCollection* ac_environment = nullptr;
};

}  // namespace KT_AC
