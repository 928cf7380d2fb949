#pragma once

#include "foundation/OQChar.h"

#include <atomic>
#include <cstdint>

class IOQStringManager;

// Stands in front of a string's characters, which are always ended by a zero unit.
struct OQStringHeader
{
    // A block in constant data: taking and dropping references leave it alone.
    static constexpr int32_t StaticMarker = 0x7FFFFC17;
    // The buffer is out for direct writing; such a block is never shared.
    static constexpr int32_t Locked = -1;

    IOQStringManager* owner; // null in constant data
    int32_t length; // characters in use, without the terminator
    int32_t capacity; // characters that the block can hold, with the terminator
    std::atomic<int32_t> references; // or one of the two values above

    OQChar* Text() { return reinterpret_cast<OQChar*>(this + 1); }

    static OQStringHeader* Of(OQChar* text) { return reinterpret_cast<OQStringHeader*>(text) - 1; }
};

// Makes and takes back the blocks of strings. Each module has its own, so a text that passes from
// one module to another is copied at the border. Any thread. Lengths are in characters, without the
// terminator; memory that can't be had throws std::bad_alloc. Slots: add at the end only.
class IOQStringManager
{
public:
    // A block with length 0 and one reference that can hold `length` characters.
    virtual OQStringHeader* Allocate(int32_t length, bool useCache) = 0;
    virtual void Free(OQStringHeader* block) = 0;

    // The same as Allocate, with the first character 0; gives the characters.
    virtual OQChar* AllocateEmpty(int32_t length) = 0;

    // A zero-filled block of that length; for 0 the shared empty string.
    virtual OQChar* AllocateZeroed(int32_t length) = 0;

    // Each byte widened as it stands; null or empty gives the shared empty string.
    virtual OQChar* CreateFromNarrow(const char* text) = 0;

    // length -1: up to the terminator; capacity -1: the length. Unless embedded zeros are kept, the
    // text ends at its first zero. Without `force`, nothing to hold gives the shared empty string.
    virtual OQChar* Create(const OQChar* text, int32_t length, int32_t capacity, bool force,
        bool keepEmbeddedZeros, bool useCache)
        = 0;

    virtual OQChar* GetEmpty() = 0;

protected:
    ~IOQStringManager() = default;
};
