#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pxvis::os {

// An open file of the system's, closed with the object. One thread at a time.
class Descriptor
{
public:
    explicit Descriptor(int number = -1) // below 0: none
        : m_number(number)
    {
    }

    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;

    bool IsOpen() const { return m_number >= 0; }

    int Get() const { return m_number; }

    // At most `size` bytes; 0 at the end, -1, with the reason in errno, if they can't be read.
    int64_t Read(void* bytes, size_t size) const;

    // All of the bytes. False, with the reason in errno, if there is no more room for them.
    bool Write(std::string_view bytes) const;

    // False, with the reason in errno: some file systems tell only now that the disk is full.
    bool Close();

private:
    int m_number;
};

}
