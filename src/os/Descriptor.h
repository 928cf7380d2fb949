#pragma once

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

    // All of the bytes. False, with the reason in errno, if there is no more room for them.
    bool Write(std::string_view bytes) const;

    // False, with the reason in errno: some file systems tell only now that the disk is full.
    bool Close();

private:
    int m_number;
};

}
