#include "foundation/OQStringGlobals.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>

constinit std::atomic<uint32_t> OQStringGlobals::s_guard { 0 };
constinit OQStringGlobals* OQStringGlobals::s_instance = nullptr;

void OQStringGlobals::CreateInstance()
{
    alignas(OQStringGlobals) static unsigned char storage[sizeof(OQStringGlobals)];
    static OQStringGlobals* const instance = [] {
        s_instance = new (storage) OQStringGlobals;
        s_guard.store(GuardValue, std::memory_order_release);
        return s_instance;
    }();
    static_cast<void>(instance);
}

OQStringGlobals::OQStringGlobals()
    : m_empty { { this, 0, 1, OQStringHeader::StaticMarker }, 0 }
{
    static_assert(offsetof(EmptyString, terminator) == sizeof(OQStringHeader));
}

OQStringHeader* OQStringGlobals::TakeFromCache(int32_t capacity)
{
    const std::lock_guard guard(m_lock);
    int32_t best = -1;
    int32_t bestSurplus = INT_MAX;
    for (int32_t i = 0; i < CachedBlocks && m_cachedCount > 0; ++i) {
        if (!m_cache[i] || m_cache[i]->capacity < capacity)
            continue;
        const int32_t surplus = m_cache[i]->capacity - capacity;
        if (surplus >= bestSurplus)
            continue;
        best = i;
        bestSurplus = surplus;
        if (surplus < GoodSurplus)
            break;
    }
    if (best < 0)
        return nullptr;
    --m_cachedCount;
    return std::exchange(m_cache[best], nullptr);
}

OQStringHeader* OQStringGlobals::Allocate(int32_t length, bool useCache)
{
    if (length < 0 || length >= INT_MAX / 2)
        throw std::bad_alloc();
    const int32_t capacity = length + 1;
    OQStringHeader* block = nullptr;
    if (useCache && capacity < CachedCapacity)
        block = TakeFromCache(capacity);
    if (!block) {
        void* memory = std::malloc(sizeof(OQStringHeader) + sizeof(OQChar) * size_t(capacity));
        if (!memory)
            throw std::bad_alloc();
        block = new (memory) OQStringHeader { this, 0, capacity, 1 };
    }
    block->length = 0;
    block->references.store(1, std::memory_order_relaxed);
    return block;
}

void OQStringGlobals::Free(OQStringHeader* block)
{
    if (block->capacity < CachedCapacity) {
        const std::lock_guard guard(m_lock);
        if (m_cachedCount < CachedBlocks) {
            *std::find(m_cache, m_cache + CachedBlocks, nullptr) = block;
            ++m_cachedCount;
            return;
        }
    }
    std::free(block);
}

OQChar* OQStringGlobals::AllocateEmpty(int32_t length)
{
    OQChar* text = Allocate(length, true)->Text();
    text[0] = 0;
    return text;
}

OQChar* OQStringGlobals::AllocateZeroed(int32_t length)
{
    if (length == 0)
        return GetEmpty();
    OQStringHeader* block = Allocate(length, true);
    block->length = length;
    std::memset(block->Text(), 0, sizeof(OQChar) * (size_t(length) + 1));
    return block->Text();
}

OQChar* OQStringGlobals::CreateFromNarrow(const char* text)
{
    const size_t length = text ? std::strlen(text) : 0;
    if (length == 0)
        return GetEmpty();
    OQStringHeader* block = Allocate(static_cast<int32_t>(std::min<size_t>(length, INT_MAX)), true);
    block->length = static_cast<int32_t>(length);
    for (size_t i = 0; i <= length; ++i)
        block->Text()[i] = static_cast<unsigned char>(text[i]);
    return block->Text();
}

OQChar* OQStringGlobals::Create(const OQChar* text, int32_t length, int32_t capacity, bool force,
    bool keepEmbeddedZeros, bool useCache)
{
    if (!text)
        length = 0;
    if (length < 0) {
        const size_t measured = std::char_traits<OQChar>::length(text);
        length = static_cast<int32_t>(std::min<size_t>(measured, INT_MAX));
    } else if (!keepEmbeddedZeros && length > 0) {
        const OQChar* zero = std::char_traits<OQChar>::find(text, size_t(length), u'\0');
        length = zero ? static_cast<int32_t>(zero - text) : length;
    }
    capacity = std::max(capacity, length);
    if (length == 0 && !force)
        return GetEmpty();
    OQStringHeader* block = Allocate(capacity, useCache);
    block->length = length;
    if (length > 0)
        std::memcpy(block->Text(), text, sizeof(OQChar) * size_t(length));
    block->Text()[length] = 0;
    return block->Text();
}
