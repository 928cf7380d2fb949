#include "os/Descriptor.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace pxvis::os {

Descriptor::~Descriptor()
{
    Close();
}

Descriptor::Descriptor(Descriptor&& other) noexcept
    : m_number(std::exchange(other.m_number, -1))
{
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    if (this != &other) {
        Close();
        m_number = std::exchange(other.m_number, -1);
    }
    return *this;
}

int64_t Descriptor::Read(void* bytes, size_t size) const
{
    ssize_t count = 0;
    do
        count = ::read(m_number, bytes, size);
    while (count < 0 && errno == EINTR);
    return count;
}

bool Descriptor::Write(std::string_view bytes) const
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(m_number, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written == 0)
            errno = EIO;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

bool Descriptor::Close()
{
    const int number = std::exchange(m_number, -1);
    return number < 0 || ::close(number) == 0;
}

}
