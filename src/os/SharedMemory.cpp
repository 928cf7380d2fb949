#include "os/SharedMemory.h"

#include "os/Descriptor.h"
#include "os/Folder.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace pxvis::os {

namespace {

constexpr mode_t ownersAlone = 0600;

std::string SystemName(const std::string& name)
{
    return "/" + name;
}

}

SharedMemory::~SharedMemory()
{
    Unmap();
}

bool SharedMemory::Make(const std::string& name, size_t size)
{
    Unmap();
    const std::string systemName = SystemName(name);
    const Descriptor file(
        ::shm_open(systemName.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, ownersAlone));
    if (!file.IsOpen())
        return false;
    // The size comes last: by it others know that the rest is as it will be. The process's mask
    // may have taken from the mode. A size without the memory behind it would be a fault at the
    // first write where there is no more room.
    if (::fchmod(file.Get(), ownersAlone) == 0
        && ::posix_fallocate(file.Get(), 0, static_cast<off_t>(size)) == 0
        && Map(file.Get(), size, PROT_READ | PROT_WRITE))
        return true;
    Remove(name);
    return false;
}

SharedMemory::Found SharedMemory::Open(const std::string& name, size_t size)
{
    Unmap();
    // Without waiting: anybody may have put a pipe there.
    const Descriptor file(
        ::shm_open(SystemName(name).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC, 0));

    struct stat status
    {
    };

    if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)
        || status.st_uid != ::geteuid())
        return Found::Nothing;
    if (status.st_size == 0)
        return Found::Unfinished;
    const bool isOurs = (status.st_mode & 07777) == ownersAlone
        && static_cast<size_t>(status.st_size) == size && Map(file.Get(), size, PROT_READ);
    return isOurs ? Found::Opened : Found::Nothing;
}

std::vector<std::string> SharedMemory::Names()
{
    constexpr size_t most = 10'000;
    std::vector<FolderEntry> entries;
    bool isComplete = false;
    ListFolder("/dev/shm", most, entries, isComplete);
    std::vector<std::string> names;
    for (FolderEntry& entry : entries)
        names.push_back(std::move(entry.name));
    return names;
}

void SharedMemory::Remove(const std::string& name)
{
    ::shm_unlink(SystemName(name).c_str());
}

bool SharedMemory::Map(int file, size_t size, int protection)
{
    void* data = ::mmap(nullptr, size, protection, MAP_SHARED, file, 0);
    if (data == MAP_FAILED)
        return false;
    m_data = data;
    m_size = size;
    return true;
}

void SharedMemory::Unmap()
{
    if (m_data)
        ::munmap(m_data, m_size);
    m_data = nullptr;
    m_size = 0;
}

}
