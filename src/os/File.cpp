#include "os/File.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace pxvis::os {

namespace {

class Descriptor
{
public:
    explicit Descriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }

    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool IsOpen() const { return m_descriptor >= 0; }

    int Get() const { return m_descriptor; }

    // Some file systems tell only now that the disk is full.
    bool Close()
    {
        const int result = ::close(m_descriptor);
        m_descriptor = -1;
        return result == 0;
    }

private:
    int m_descriptor;
};

FileError ErrorOf(int number)
{
    switch (number) {
    case ENOENT:
    case ENOTDIR:
        return FileError::NotFound;
    case EACCES:
    case EPERM:
    case EROFS:
        return FileError::Denied;
    case EISDIR:
    case ENXIO:
        return FileError::NotRegular;
    default:
        return FileError::Failed;
    }
}

bool IsUsable(const std::string& path)
{
    return !path.empty() && path.find('\0') == std::string::npos;
}

std::string FolderOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

int CreateNew(const std::string& path, unsigned mode)
{
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
}

// A new file in the folder; its name is hidden and never one of ours.
int CreateTemporary(const std::string& folder, const WriteOptions& options, std::string& path)
{
    if (!options.temporary.empty()) {
        path = folder + "/" + options.temporary;
        ::unlink(path.c_str());
        return CreateNew(path, options.mode);
    }
    static std::atomic<unsigned> counter { 0 };
    constexpr int attempts = 1000; // files that crashes left behind
    for (int i = 0; i < attempts; ++i) {
        path = folder + "/.pxvis-" + std::to_string(::getpid()) + "-"
            + std::to_string(counter.fetch_add(1)) + ".tmp";
        const int descriptor = CreateNew(path, options.mode);
        if (descriptor >= 0 || errno != EEXIST)
            return descriptor;
    }
    return -1;
}

bool WriteAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

bool CopyAll(int from, int to)
{
    std::vector<char> block(1 << 16);
    for (;;) {
        const ssize_t count = ::read(from, block.data(), block.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        if (!WriteAll(to, { block.data(), static_cast<size_t>(count) }))
            return false;
    }
}

// Links that lead nowhere are there, too.
bool IsThere(const std::string& path)
{
    struct stat status
    {
    };

    return ::lstat(path.c_str(), &status) == 0;
}

// The new name should outlive a power cut as well; not every file system can promise that.
void SyncFolder(const std::string& folder)
{
    const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.IsOpen())
        ::fsync(descriptor.Get());
}

int64_t Nanoseconds(const timespec& time)
{
    return int64_t { time.tv_sec } * 1'000'000'000 + time.tv_nsec;
}

// May `path` be replaced? `old` becomes the state of the file that is there, or stays as it is.
FileError CheckTarget(const std::string& path, struct stat& old)
{
    struct stat status
    {
    };

    if (::stat(path.c_str(), &status) != 0)
        return errno == ENOENT ? FileError::None : ErrorOf(errno);
    if (!S_ISREG(status.st_mode))
        return FileError::NotRegular;
    if (::access(path.c_str(), W_OK) != 0)
        return ErrorOf(errno);
    old = status;
    return FileError::None;
}

// Owner, group and permissions of the file that is to be replaced. Only root may give a file away;
// where even the group can't be kept, it gets no more than everybody, since it is another one.
bool TakeOver(int descriptor, const struct stat& old)
{
    mode_t mode = old.st_mode & 07777;
    if (::fchown(descriptor, old.st_uid, old.st_gid) != 0
        && ::fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) != 0)
        mode = (mode & ~mode_t { 070 }) | (mode & mode >> 3 & 7) << 3;
    return ::fchmod(descriptor, mode) == 0;
}

}

bool FileExists(const std::string& path)
{
    struct stat status
    {
    };

    return IsUsable(path) && ::stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

FileError ReadFile(const std::string& path, size_t maximumSize, std::string& bytes)
{
    bytes.clear();
    if (!IsUsable(path))
        return FileError::NotFound;
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.IsOpen())
        return ErrorOf(errno);

    struct stat status
    {
    };

    if (::fstat(file.Get(), &status) != 0)
        return ErrorOf(errno);
    if (!S_ISREG(status.st_mode))
        return FileError::NotRegular;
    if (static_cast<uint64_t>(status.st_size) > maximumSize)
        return FileError::TooLarge;

    // The size is only a hint: the file may grow meanwhile, and some tell none.
    std::string read;
    read.resize(static_cast<size_t>(status.st_size) + 1);
    size_t used = 0;
    for (;;) {
        if (used == read.size())
            read.resize(read.size() * 2);
        const ssize_t count = ::read(file.Get(), read.data() + used, read.size() - used);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return ErrorOf(errno);
        if (count == 0)
            break;
        used += static_cast<size_t>(count);
        if (used > maximumSize)
            return FileError::TooLarge;
    }
    read.resize(used);
    bytes = std::move(read);
    return FileError::None;
}

FileError WriteFile(const std::string& path, std::string_view bytes, const WriteOptions& options)
{
    if (!IsUsable(path))
        return FileError::NotFound;
    const std::string target = ResolveLinks(path);

    struct stat old
    {
    };

    if (const FileError error = CheckTarget(target, old); error != FileError::None)
        return error;
    const std::string folder = FolderOf(target);
    std::string temporary;
    Descriptor file(CreateTemporary(folder, options, temporary));
    if (!file.IsOpen())
        return ErrorOf(errno);
    const bool written = (old.st_nlink == 0 || TakeOver(file.Get(), old))
        && WriteAll(file.Get(), bytes) && ::fsync(file.Get()) == 0 && file.Close()
        && ::rename(temporary.c_str(), target.c_str()) == 0;
    if (!written) {
        const FileError error = ErrorOf(errno);
        ::unlink(temporary.c_str());
        return error;
    }
    SyncFolder(folder);
    return FileError::None;
}

FileError CopyFile(const std::string& from, const std::string& to)
{
    if (!IsUsable(from) || !IsUsable(to))
        return FileError::NotFound;
    const Descriptor source(
        ::open(from.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    if (!source.IsOpen())
        return errno == ELOOP ? FileError::NotRegular : ErrorOf(errno);

    struct stat status
    {
    };

    if (::fstat(source.Get(), &status) != 0)
        return ErrorOf(errno);
    if (!S_ISREG(status.st_mode))
        return FileError::NotRegular;
    const std::string folder = FolderOf(to);
    std::string temporary;
    Descriptor copy(CreateTemporary(folder, {}, temporary));
    if (!copy.IsOpen())
        return ErrorOf(errno);
    const bool copied = CopyAll(source.Get(), copy.Get())
        && ::fchmod(copy.Get(), status.st_mode & 0777) == 0 && ::fsync(copy.Get()) == 0
        && copy.Close() && ::rename(temporary.c_str(), to.c_str()) == 0;
    if (!copied) {
        const FileError error = ErrorOf(errno);
        ::unlink(temporary.c_str());
        return error;
    }
    return FileError::None;
}

bool MoveFile(const std::string& from, const std::string& to)
{
    if (!IsUsable(from) || !IsUsable(to))
        return false;
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    const bool otherDisk = errno == EXDEV;
    // Not every file system knows how to rename without replacing.
    if ((!otherDisk && errno != EINVAL) || IsThere(to))
        return false;
    if (!otherDisk)
        return ::rename(from.c_str(), to.c_str()) == 0;
    if (CopyFile(from, to) != FileError::None)
        return false;
    if (::unlink(from.c_str()) == 0)
        return true;
    ::unlink(to.c_str());
    return false;
}

int DeleteFile(const std::string& path)
{
    if (!IsUsable(path))
        return ENOENT;
    if (::unlink(path.c_str()) == 0)
        return 0;
    const int number = errno;
    return IsThere(path) ? number : 0;
}

bool IsSameFile(const std::string& a, const std::string& b)
{
    struct stat first
    {
    };

    struct stat second
    {
    };

    return IsUsable(a) && IsUsable(b) && ::stat(a.c_str(), &first) == 0
        && ::stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev
        && first.st_ino == second.st_ino;
}

std::string ResolveLinks(std::string path)
{
    constexpr int maximumLinks = 40; // as many as the system itself follows
    for (int i = 0; i < maximumLinks; ++i) {
        char target[PATH_MAX];
        const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
        if (length <= 0 || length == sizeof target)
            break;
        const std::string_view link(target, static_cast<size_t>(length));
        path = link.front() == '/' ? std::string(link) : FolderOf(path) + "/" + std::string(link);
    }
    return path;
}

bool FileStamp::IsSettled() const
{
    constexpr int64_t slowestTick = 50 * 1000 * 1000;
    timespec now {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return size < 0 || Nanoseconds(now) - changed > slowestTick;
}

FileStamp StampOf(const std::string& path)
{
    struct stat status
    {
    };

    if (!IsUsable(path) || ::stat(path.c_str(), &status) != 0)
        return {};
    return { status.st_dev, status.st_ino, status.st_size, Nanoseconds(status.st_mtim),
        Nanoseconds(status.st_ctim) };
}

double LastWriteTime(const std::string& path)
{
    struct stat status
    {
    };

    if (!IsUsable(path) || ::stat(path.c_str(), &status) != 0)
        return 0;
    return static_cast<double>(status.st_mtim.tv_sec)
        + static_cast<double>(status.st_mtim.tv_nsec) / 1e9;
}

}
