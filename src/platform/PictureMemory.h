#pragma once

#include "os/Descriptor.h"

#include <cstddef>

namespace pxvis {

// Memory that a process at the other end of a socket can map, too. One owner.
class PictureMemory
{
public:
    PictureMemory() = default;
    ~PictureMemory();
    PictureMemory(const PictureMemory&) = delete;
    PictureMemory& operator=(const PictureMemory&) = delete;

    // In place of what there was, all of it backed by memory. False, and empty, if there is none.
    bool Create(size_t bytes);

    void* GetData() const { return m_data; } // null if empty

    size_t GetSize() const { return m_size; }

    // A descriptor of it that the caller closes; below 0 if there is none.
    int Duplicate() const;

private:
    void Clear();

    os::Descriptor m_file;
    void* m_data = nullptr;
    size_t m_size = 0;
};

}
