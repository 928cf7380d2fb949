#pragma once

#include <cstddef>
#include <cstdint>

// Bytes of a file or a message. One thread at a time.
class OQByteBuffer
{
public:
    OQByteBuffer() = default;
    ~OQByteBuffer();
    OQByteBuffer(const OQByteBuffer&) = delete;
    OQByteBuffer& operator=(const OQByteBuffer&) = delete;
    OQByteBuffer(OQByteBuffer&& other) noexcept;
    OQByteBuffer& operator=(OQByteBuffer&& other) noexcept;

    uint8_t* GetData() { return m_data; }

    const uint8_t* GetData() const { return m_data; }

    size_t GetSize() const { return m_size; }

    size_t GetCapacity() const { return m_capacity; }

    // Room for `amount` more bytes, and the address of the first; null, and no change, if the
    // memory can't be had. With `zero` they are zeros, with `count` they belong to the size. Where
    // the room is short it grows by `step` bytes at least.
    uint8_t* Add(size_t amount, bool zero = false, size_t step = 0, bool count = true);

    // New bytes are zeros. False, and no change, if the memory can't be had.
    bool SetSize(size_t size);

    // Gives the memory back.
    void Clear();

private:
    uint8_t* m_data = nullptr;
    size_t m_size = 0; // in use
    size_t m_capacity = 0;
};
