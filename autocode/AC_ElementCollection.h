#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "autocode/AC_Element.h"

namespace KT_AC {

// The flat set of a format's elements, keyed by id. It keeps the order of insertion beside the
// sorted map, because events go out in file order while listings go out in id order.
class AC_ElementCollection {
public:
    AC_ElementCollection() = default;
    AC_ElementCollection(const AC_ElementCollection&) = delete;
    AC_ElementCollection& operator=(const AC_ElementCollection&) = delete;
    ~AC_ElementCollection();

    void addElement(const std::string& id, std::unique_ptr<AC_Element> element);
    AC_Element& getElement(const std::string& id) const;
    AC_Element& getElementByIndex(uint32_t index) const;
    uint32_t size() const;
    // Names an anonymous element: "&" and a running number.
    std::string generateId();
    // The references ("V" + id) of every id that starts with the letter, in id order.
    std::vector<std::string> getIdsOfType(char letter) const;
    void broadcast(uint32_t event, uint32_t argument);
    void clear();

private:
    void destroyElements();

    std::vector<std::string> ids;
    std::map<std::string, std::unique_ptr<AC_Element>> elements;
    uint32_t nextGeneratedId = 0;
};

}  // namespace KT_AC
