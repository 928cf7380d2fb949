#include "os/FileLock.h"

#include "os/Clock.h"
#include "os/Path.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <utility>

namespace pxvis::os {

namespace {

constexpr int64_t kMillisecond = 1000 * 1000;

bool IsRegular(const Descriptor& file)
{
    struct stat status
    {
    };

    return ::fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode);
}

}

FileLock::~FileLock()
{
    Release();
}

bool FileLock::Acquire(const std::string& path, int32_t waitMilliseconds)
{
    Release();
    if (!IsUsablePath(path))
        return false;
    Descriptor file(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    if (!file.IsOpen() || !IsRegular(file))
        return false;
    const int64_t end = MonotonicNanoseconds() + waitMilliseconds * kMillisecond;
    for (int64_t pause = kMillisecond / 4; ::flock(file.Get(), LOCK_EX | LOCK_NB) != 0;) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || MonotonicNanoseconds() >= end)
            return false;
        const timespec time { 0, static_cast<long>(pause) };
        ::nanosleep(&time, nullptr);
        pause = std::min(pause * 2, 8 * kMillisecond);
    }
    m_file = std::move(file);
    return true;
}

void FileLock::Release()
{
    if (!m_file.IsOpen())
        return;
    // Closing alone would leave the lock to a child process that was forked meanwhile.
    ::flock(m_file.Get(), LOCK_UN);
    m_file.Close();
}

}
