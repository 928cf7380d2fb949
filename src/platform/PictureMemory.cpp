#include "platform/PictureMemory.h"

#include <fcntl.h>
#include <sys/mman.h>

namespace pxvis {

PictureMemory::~PictureMemory()
{
    Clear();
}

void PictureMemory::Clear()
{
    if (m_data)
        munmap(m_data, m_size);
    m_data = nullptr;
    m_size = 0;
    m_file = os::Descriptor();
}

bool PictureMemory::Create(size_t bytes)
{
    Clear();
    os::Descriptor file(memfd_create("pxvis-picture", MFD_CLOEXEC));
    // Taken now: a page that can't be had later on would be a fatal signal.
    if (!file.IsOpen() || posix_fallocate(file.Get(), 0, static_cast<off_t>(bytes)) != 0)
        return false;
    void* data = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
    if (data == MAP_FAILED)
        return false;
    m_file = std::move(file);
    m_data = data;
    m_size = bytes;
    return true;
}

int PictureMemory::Duplicate() const
{
    return m_file.IsOpen() ? fcntl(m_file.Get(), F_DUPFD_CLOEXEC, 0) : -1;
}

}
