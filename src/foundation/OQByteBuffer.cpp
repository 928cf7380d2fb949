#include "foundation/OQByteBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

OQByteBuffer::~OQByteBuffer()
{
    std::free(m_data);
}

OQByteBuffer::OQByteBuffer(OQByteBuffer&& other) noexcept
    : m_data(std::exchange(other.m_data, nullptr))
    , m_size(std::exchange(other.m_size, 0))
    , m_capacity(std::exchange(other.m_capacity, 0))
{
}

OQByteBuffer& OQByteBuffer::operator=(OQByteBuffer&& other) noexcept
{
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
    return *this;
}

uint8_t* OQByteBuffer::Add(size_t amount, bool zero, size_t step, bool count)
{
    if (amount > PTRDIFF_MAX - m_size || step > PTRDIFF_MAX - m_capacity)
        return nullptr;
    const size_t needed = m_size + amount;
    if (needed > m_capacity || !m_data) {
        const size_t capacity = std::max({ m_capacity + step, needed, size_t { 1 } });
        void* data = std::realloc(m_data, capacity);
        if (!data)
            return nullptr;
        m_data = static_cast<uint8_t*>(data);
        m_capacity = capacity;
    }
    uint8_t* added = m_data + m_size;
    if (zero)
        std::memset(added, 0, amount);
    if (count)
        m_size = needed;
    return added;
}

bool OQByteBuffer::SetSize(size_t size)
{
    if (size > m_size)
        return Add(size - m_size, true) != nullptr;
    m_size = size;
    return true;
}

void OQByteBuffer::Clear()
{
    std::free(m_data);
    m_data = nullptr;
    m_size = 0;
    m_capacity = 0;
}
