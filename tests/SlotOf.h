#pragma once

#include <cstddef>
#include <cstring>

// The place of a virtual operation in the table of its class, by the Itanium C++ ABI; a virtual
// destructor takes two.
template <typename Method>
long SlotOf(Method method)
{
    ptrdiff_t words[2] = {};
    static_assert(sizeof(method) == sizeof(words));
    std::memcpy(words, &method, sizeof(words));
    return words[0] / static_cast<long>(sizeof(void*));
}
