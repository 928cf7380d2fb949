#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>

// Texts that cross a module border and that the receiver frees: 16-bit units ended by a zero, with
// the length in bytes, without the zero, in the 4 bytes in front. Inline, so that a host needs no
// library.

inline char16_t* SysAllocString(const char16_t* text)
{
    if (!text)
        return nullptr;
    uint32_t length = 0;
    while (text[length])
        ++length;
    const uint32_t bytes = length * 2;
    // 8 bytes in front keep the characters aligned as malloc gives them.
    auto* block = static_cast<char*>(std::malloc(8 + size_t { bytes } + 2));
    if (!block)
        return nullptr;
    std::memcpy(block + 4, &bytes, 4);
    std::memcpy(block + 8, text, size_t { bytes } + 2);
    return reinterpret_cast<char16_t*>(block + 8);
}

inline void SysFreeString(char16_t* text)
{
    if (text)
        std::free(reinterpret_cast<char*>(text) - 8);
}
