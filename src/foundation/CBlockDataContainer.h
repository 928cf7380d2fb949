#pragma once

#include <cstddef>

// Cuts nodes of one size out of blocks of 65536 bytes, so that a map needn't ask the heap for every
// entry. All nodes go with the pool; none is given back alone. One thread at a time.
class CBlockDataContainer
{
public:
    static constexpr size_t BlockSize = 65536;

    CBlockDataContainer() = default;
    ~CBlockDataContainer();
    CBlockDataContainer(const CBlockDataContainer&) = delete;
    CBlockDataContainer& operator=(const CBlockDataContainer&) = delete;

    // Memory for a node, aligned to 8 bytes; larger nodes than a block have one of their own.
    // Throws std::bad_alloc.
    void* Allocate(size_t size);

    void ReleaseAll();

private:
    struct Block
    {
        Block* next;
        size_t used;
    };

    Block* m_blocks = nullptr; // the one that is being cut comes first
};
