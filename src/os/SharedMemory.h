#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pxvis::os {

// Memory that the processes of one user, or the modules of one process, share by a name without
// "/". One thread at a time.
class SharedMemory
{
public:
    enum class Found
    {
        Opened,
        Unfinished, // its maker has not come to its size yet
        Nothing, // or what isn't this user's alone, or has another size
    };

    SharedMemory() = default;
    ~SharedMemory(); // the mapping goes, the name stays
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    // Filled with zeros, for this user alone, to be read and written. False if there is something
    // of that name.
    bool Make(const std::string& name, size_t size);

    // What another one made, to be read.
    Found Open(const std::string& name, size_t size);

    void* Data() const { return m_data; } // null if none is open

    // All that this system's processes have made, as far as it tells.
    static std::vector<std::string> Names();

    // Takes the name away; whoever has the memory open keeps it.
    static void Remove(const std::string& name);

private:
    bool Map(int file, size_t size, int protection);
    void Unmap();

    void* m_data = nullptr;
    size_t m_size = 0;
};

}
