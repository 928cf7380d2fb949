#include "os/PartFile.h"

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
    return Descriptor(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
}

PartFile::PartFile(const std::string& target, const std::string& name, unsigned mode)
{
    const std::string folder = FolderOf(target) + "/";
    if (!name.empty()) {
        m_path = folder + name;
        ::unlink(m_path.c_str());
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
        ::unlink(m_path.c_str());
}

bool PartFile::Sync() const
{
    return ::fsync(m_file.Get()) == 0;
}

bool PartFile::KeepAs(const std::string& target)
{
    if (m_file.Close() && std::rename(m_path.c_str(), target.c_str()) == 0)
        return true;
    const int reason = errno;
    ::unlink(m_path.c_str());
    errno = reason;
    return false;
}

}
