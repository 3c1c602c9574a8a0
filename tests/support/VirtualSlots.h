#pragma once
#include <cstddef>
#include <cstring>

// Under the Itanium C++ ABI a pointer to a virtual operation holds 1 + the byte offset of its vtable slot.
template <class Operation>
std::ptrdiff_t slotOf(Operation operation)
{
    static_assert(sizeof(operation) == 2 * sizeof(std::ptrdiff_t));
    std::ptrdiff_t words[2];
    std::memcpy(words, &operation, sizeof(words));
    return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}
