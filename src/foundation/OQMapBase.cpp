#include "foundation/OQMapBase.h"

#include "foundation/OQCharacters.h"

#include <climits>
#include <cstdlib>
#include <new>
#include <utility>

uint32_t OQHashText(std::u16string_view text)
{
    uint32_t hash = 0;
    for (const OQChar character : text)
        hash = hash * 65599 + OQToLower(character);
    return hash;
}

OQMapBase::~OQMapBase()
{
    std::free(m_buckets);
}

void OQMapBase::GrowForOne()
{
    const uint64_t needed = uint64_t { m_count } + 1;
    if (m_bucketCount != 0 && needed <= uint64_t { m_bucketCount } * 2 + 2)
        return;
    if (needed >= INT_MAX)
        throw std::bad_alloc();
    uint64_t bucketCount = 8;
    while (bucketCount <= needed)
        bucketCount *= 2;
    --bucketCount;
    auto** buckets = static_cast<OQMapNode**>(std::calloc(bucketCount, sizeof(OQMapNode*)));
    if (!buckets)
        throw std::bad_alloc();
    OQMapNode** const oldBuckets = std::exchange(m_buckets, buckets);
    const uint32_t oldCount = std::exchange(m_bucketCount, static_cast<uint32_t>(bucketCount));
    m_count = 0;
    for (uint32_t bucket = 0; bucket < oldCount; ++bucket) {
        for (OQMapNode* node = oldBuckets[bucket]; node;) {
            OQMapNode* next = std::exchange(node->next, nullptr);
            LinkAtEnd(node, BucketOf(node));
            node = next;
        }
    }
    std::free(oldBuckets);
}

void OQMapBase::LinkAtEnd(OQMapNode* node, uint32_t bucket)
{
    OQMapNode** link = &m_buckets[bucket];
    while (*link)
        link = &(*link)->next;
    *link = node;
    ++m_count;
}

void OQMapBase::ReleaseBuckets()
{
    std::free(m_buckets);
    m_buckets = nullptr;
    m_bucketCount = 0;
    m_count = 0;
}

OQMapNode* OQMapBase::NextNode(OQMapNode* node) const
{
    if (node && node->next)
        return node->next;
    for (uint32_t bucket = node ? BucketOf(node) + 1 : 0; bucket < m_bucketCount; ++bucket) {
        if (m_buckets[bucket])
            return m_buckets[bucket];
    }
    return nullptr;
}

void OQMapBase::SwapEntries(OQMapBase& other) noexcept
{
    std::swap(m_count, other.m_count);
    std::swap(m_bucketCount, other.m_bucketCount);
    std::swap(m_pool, other.m_pool);
    std::swap(m_buckets, other.m_buckets);
}
