#include "foundation/OQMapBase.h"

#include "foundation/OQCharacters.h"

#include <climits>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

OQMapNode* Reversed(OQMapNode* chain)
{
    OQMapNode* reversed = nullptr;
    while (chain) {
        OQMapNode* next = std::exchange(chain->next, reversed);
        reversed = std::exchange(chain, next);
    }
    return reversed;
}

}

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
    // From the last node to the first, each to the front of its chain: the order stays, and no
    // chain is walked to its end.
    for (uint32_t bucket = oldCount; bucket-- > 0;) {
        for (OQMapNode* node = Reversed(oldBuckets[bucket]); node;) {
            OQMapNode*& front = m_buckets[BucketOf(node)];
            OQMapNode* next = std::exchange(node->next, front);
            front = std::exchange(node, next);
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
