#include "os/PartFile.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace pxvis::os {

PartFile::PartFile(const std::string& target)
{
    static std::atomic<uint32_t> counter { 0 };
    const size_t slash = target.rfind('/');
    const std::string folder
        = slash == std::string::npos ? std::string() : target.substr(0, slash + 1);
    do {
        m_path = folder + ".pxvis-" + std::to_string(getpid()) + "-"
            + std::to_string(counter.fetch_add(1)) + ".part";
        m_file = open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (m_file < 0 && errno == EEXIST);
}

PartFile::~PartFile()
{
    if (m_file >= 0) {
        close(m_file);
        unlink(m_path.c_str());
    }
}

bool PartFile::Write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(m_file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

bool PartFile::KeepAs(const std::string& target)
{
    const bool closed = close(m_file) == 0; // a network file may tell here that it didn't fit
    m_file = -1;
    if (closed && std::rename(m_path.c_str(), target.c_str()) == 0)
        return true;
    unlink(m_path.c_str());
    return false;
}

}
