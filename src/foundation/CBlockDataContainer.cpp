#include "foundation/CBlockDataContainer.h"

#include <algorithm>
#include <cstdlib>
#include <new>

CBlockDataContainer::~CBlockDataContainer()
{
    ReleaseAll();
}

void* CBlockDataContainer::Allocate(size_t size)
{
    constexpr size_t alignment = 8;
    size = (size + alignment - 1) / alignment * alignment;
    if (!m_blocks || m_blocks->used + size > BlockSize) {
        const size_t bytes = std::max(BlockSize, sizeof(Block) + size);
        auto* block = static_cast<Block*>(std::malloc(bytes));
        if (!block)
            throw std::bad_alloc();
        *block = { m_blocks, sizeof(Block) };
        m_blocks = block;
    }
    void* node = reinterpret_cast<unsigned char*>(m_blocks) + m_blocks->used;
    m_blocks->used += size;
    return node;
}

void CBlockDataContainer::ReleaseAll()
{
    while (m_blocks) {
        Block* next = m_blocks->next;
        std::free(m_blocks);
        m_blocks = next;
    }
}
