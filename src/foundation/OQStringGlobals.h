#pragma once

#include "foundation/IOQStringManager.h"

#include <mutex>

// The string manager of this module. Keeps up to 16 freed small blocks, since the drawing and
// parsing paths make and drop small strings all the time.
class OQStringGlobals final : public IOQStringManager
{
public:
    // Made at the first use: strings are made by static constructors, whose order nobody knows. It
    // is never destroyed, for the same reason.
    static OQStringGlobals& Get()
    {
        if (s_guard.load(std::memory_order_acquire) != GuardValue)
            CreateInstance();
        return *s_instance;
    }

    OQStringHeader* Allocate(int32_t length, bool useCache) override;
    void Free(OQStringHeader* block) override;
    OQChar* AllocateEmpty(int32_t length) override;
    OQChar* AllocateZeroed(int32_t length) override;
    OQChar* CreateFromNarrow(const char* text) override;
    OQChar* Create(const OQChar* text, int32_t length, int32_t capacity, bool force,
        bool keepEmbeddedZeros, bool useCache) override;

    OQChar* GetEmpty() override { return m_empty.header.Text(); }

private:
    static constexpr uint32_t GuardValue = 0xB23A8C33;
    static constexpr int32_t CachedBlocks = 16;
    static constexpr int32_t CachedCapacity = 1032; // blocks below it are worth keeping
    static constexpr int32_t GoodSurplus = 16; // the search ends at a block that fits this closely

    struct EmptyString
    {
        OQStringHeader header;
        OQChar terminator;
    };

    OQStringGlobals();
    ~OQStringGlobals() = default;
    static void CreateInstance();
    OQStringHeader* TakeFromCache(int32_t capacity);

    static std::atomic<uint32_t> s_guard;
    static OQStringGlobals* s_instance;

    std::mutex m_lock; // guards the cache
    EmptyString m_empty;
    OQStringHeader* m_cache[CachedBlocks] = {};
    int32_t m_cachedCount = 0;
};
