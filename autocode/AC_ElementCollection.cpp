#include "autocode/AC_ElementCollection.h"

#include "errors/KT_Error.h"

namespace KT_AC {

AC_ElementCollection::~AC_ElementCollection() { destroyElements(); }

void AC_ElementCollection::addElement(const std::string& id, std::unique_ptr<AC_Element> element)
{
    if (elements.count(id) != 0)
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("Element id already exists in collection: ", id));
    element->ac_environment = this;
    ids.push_back(id);
    // Should the map fail, the list gives the id back, so both keep the same elements.
    try {
        elements.emplace(id, std::move(element));
    } catch (...) {
        ids.pop_back();
        throw;
    }
}

AC_Element& AC_ElementCollection::getElement(const std::string& id) const
{
    const auto found = elements.find(id);
    if (found == elements.end())
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("Element id not found: ", id));
    return *found->second;
}

AC_Element& AC_ElementCollection::getElementByIndex(uint32_t index) const
{
    if (index >= ids.size())
        throw KT_ERROR::internal_autocode_error("Element index out of range");
    return getElement(ids[index]);
}

uint32_t AC_ElementCollection::size() const { return static_cast<uint32_t>(ids.size()); }

std::string AC_ElementCollection::generateId() { return KT_ERROR::text("&", nextGeneratedId++); }

std::vector<std::string> AC_ElementCollection::getIdsOfType(char letter) const
{
    std::vector<std::string> references;
    for (const auto& [id, element] : elements)
        if (!id.empty() && id.front() == letter)
            references.push_back("V" + id);
    return references;
}

void AC_ElementCollection::broadcast(uint32_t event, uint32_t argument)
{
    for (const std::string& id : ids)
        elements.at(id)->update(event, argument);
}

void AC_ElementCollection::clear()
{
    destroyElements();
    nextGeneratedId = 0;
}

// Elements go in the order they came, as the file declared them.
void AC_ElementCollection::destroyElements()
{
    for (const std::string& id : ids)
        elements.at(id).reset();
    elements.clear();
    ids.clear();
}

}  // namespace KT_AC
