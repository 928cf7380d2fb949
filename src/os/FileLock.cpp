#include "os/FileLock.h"

#include "os/Clock.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pxvis::os {

namespace {

constexpr int64_t kMillisecond = 1000 * 1000;

bool IsRegular(int descriptor)
{
    struct stat status
    {
    };

    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}

FileLock::~FileLock()
{
    Release();
}

bool FileLock::Acquire(const std::string& path, int32_t waitMilliseconds)
{
    Release();
    if (path.empty() || path.find('\0') != std::string::npos)
        return false;
    m_descriptor
        = ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (m_descriptor < 0)
        return false;
    if (!IsRegular(m_descriptor)) {
        Release();
        return false;
    }
    const int64_t end = MonotonicNanoseconds() + waitMilliseconds * kMillisecond;
    for (int64_t pause = kMillisecond / 4; ::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0;) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || MonotonicNanoseconds() >= end) {
            Release();
            return false;
        }
        const timespec time { 0, static_cast<long>(pause) };
        ::nanosleep(&time, nullptr);
        pause = std::min(pause * 2, 8 * kMillisecond);
    }
    return true;
}

void FileLock::Release()
{
    if (m_descriptor < 0)
        return;
    // Closing alone would leave the lock to a child process that was forked meanwhile.
    ::flock(m_descriptor, LOCK_UN);
    ::close(m_descriptor);
    m_descriptor = -1;
}

}
