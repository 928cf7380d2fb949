#include "os/PartFile.h"

#include "os/LongPath.h"
#include "os/Path.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace pxvis::os {

static Descriptor CreateNew(const std::string& path, unsigned mode)
{
    return Descriptor(OpenPath(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
}

static void Remove(const std::string& path)
{
    const LongPath place(path);
    ::unlinkat(place.Folder(), place.Rest(), 0);
}

PartFile::PartFile(const std::string& target, const std::string& name, unsigned mode)
{
    const std::string folder = FolderOf(target) + "/";
    if (!name.empty()) {
        m_path = folder + name;
        Remove(m_path);
        m_file = CreateNew(m_path, mode);
        return;
    }
    static std::atomic<uint32_t> counter { 0 };
    constexpr int attempts = 1000; // files that crashes left behind
    for (int i = 0; i < attempts; ++i) {
        m_path = folder + ".pxvis-" + std::to_string(::getpid()) + "-"
            + std::to_string(counter.fetch_add(1)) + ".part";
        m_file = CreateNew(m_path, mode);
        if (m_file.IsOpen() || errno != EEXIST)
            return;
    }
}

PartFile::~PartFile()
{
    if (m_file.IsOpen())
        Remove(m_path);
}

bool PartFile::Sync() const
{
    return ::fsync(m_file.Get()) == 0;
}

bool PartFile::KeepAs(const std::string& target)
{
    const LongPath part(m_path);
    const LongPath place(target);
    if (m_file.Close() && ::renameat(part.Folder(), part.Rest(), place.Folder(), place.Rest()) == 0)
        return true;
    const int reason = errno;
    Remove(m_path);
    errno = reason;
    return false;
}

}
