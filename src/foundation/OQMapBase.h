#pragma once

#include "foundation/CBlockDataContainer.h"

#include <cstdint>
#include <string_view>

// The hash of a text, without regard to case: h * 65599 + c over its lower case, modulo 2^32; 0 for
// an empty one.
uint32_t OQHashText(std::u16string_view text);

struct OQMapNode
{
    OQMapNode* next = nullptr;
};

// The buckets of a chained hash map. There are 2^k - 1 of them, at least 7, or none before the
// first entry; a chain keeps the order of insertion.
class OQMapBase
{
public:
    virtual ~OQMapBase();
    OQMapBase(const OQMapBase&) = delete;
    OQMapBase& operator=(const OQMapBase&) = delete;

    virtual void ClearAll() = 0;
    virtual uint32_t BucketOf(const OQMapNode* node) const = 0;
    virtual size_t NodeSize() const = 0;

    int GetCount() const { return static_cast<int>(m_count); }

    bool IsEmpty() const { return m_count == 0; }

    int GetBucketCount() const { return static_cast<int>(m_bucketCount); }

protected:
    // With a pool, which must outlive the map, nodes come from it and stay there till it ends.
    explicit OQMapBase(CBlockDataContainer* pool)
        : m_pool(pool)
    {
    }

    // Makes room for one more entry.
    void GrowForOne();
    void LinkAtEnd(OQMapNode* node, uint32_t bucket);
    void ReleaseBuckets();
    // The node behind `node` in bucket order; null: the first one. Null at the end.
    OQMapNode* NextNode(OQMapNode* node) const;

    void SwapEntries(OQMapBase& other) noexcept;

    uint32_t m_count = 0;
    uint32_t m_bucketCount = 0;
    CBlockDataContainer* m_pool;
    OQMapNode** m_buckets = nullptr;
};
