#include "os/File.h"

#include "os/Descriptor.h"
#include "os/Folder.h"
#include "os/LongPath.h"
#include "os/PartFile.h"
#include "os/Path.h"

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace pxvis::os {

namespace {

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

bool CopyAll(const Descriptor& from, const Descriptor& to)
{
    std::vector<char> block(1 << 16);
    for (;;) {
        const int64_t count = from.Read(block.data(), block.size());
        if (count <= 0)
            return count == 0;
        if (!to.Write({ block.data(), static_cast<size_t>(count) }))
            return false;
    }
}

// Links that lead nowhere are there, too.
bool IsThere(const std::string& path)
{
    struct stat status
    {
    };

    return StatPath(path, status, AT_SYMLINK_NOFOLLOW) == 0;
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

    if (StatPath(path, status) != 0)
        return errno == ENOENT ? FileError::None : ErrorOf(errno);
    if (!S_ISREG(status.st_mode))
        return FileError::NotRegular;
    const LongPath place(path);
    if (::faccessat(place.Folder(), place.Rest(), W_OK, 0) != 0)
        return ErrorOf(errno);
    old = status;
    return FileError::None;
}

// Owner, group and permissions of the file that is to be replaced. Only root may give a file away;
// where even the group can't be kept, it gets no more than everybody, since it is another one.
bool TakeOver(const Descriptor& file, const struct stat& old)
{
    mode_t mode = old.st_mode & 07777;
    if (::fchown(file.Get(), old.st_uid, old.st_gid) != 0
        && ::fchown(file.Get(), static_cast<uid_t>(-1), old.st_gid) != 0)
        mode = (mode & ~mode_t { 070 }) | (mode & mode >> 3 & 7) << 3;
    return ::fchmod(file.Get(), mode) == 0;
}

}

bool FileExists(const std::string& path)
{
    struct stat status
    {
    };

    return IsUsablePath(path) && StatPath(path, status) == 0 && !S_ISDIR(status.st_mode);
}

int64_t FileSize(const std::string& path)
{
    struct stat status
    {
    };

    if (!IsUsablePath(path) || StatPath(path, status) != 0 || !S_ISREG(status.st_mode))
        return -1;
    return status.st_size;
}

FileError OpenRegularFile(const std::string& path, Descriptor& file, int64_t& size)
{
    size = -1;
    file.Close();
    if (!IsUsablePath(path))
        return FileError::NotFound;
    Descriptor opened(OpenPath(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!opened.IsOpen())
        return ErrorOf(errno);

    struct stat status
    {
    };

    if (::fstat(opened.Get(), &status) != 0)
        return ErrorOf(errno);
    if (!S_ISREG(status.st_mode))
        return FileError::NotRegular;
    file = std::move(opened);
    size = status.st_size;
    return FileError::None;
}

FileError ReadFile(const std::string& path, size_t maximumSize, std::string& bytes)
{
    bytes.clear();
    Descriptor file;
    int64_t size = 0;
    if (const FileError error = OpenRegularFile(path, file, size); error != FileError::None)
        return error;
    if (static_cast<uint64_t>(size) > maximumSize)
        return FileError::TooLarge;

    // The size is only a hint: the file may grow meanwhile, and some tell none.
    std::string read;
    read.resize(static_cast<size_t>(size) + 1);
    size_t used = 0;
    for (;;) {
        if (used == read.size())
            read.resize(read.size() * 2);
        const int64_t count = file.Read(read.data() + used, read.size() - used);
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
    if (!IsUsablePath(path))
        return FileError::NotFound;
    const std::string target = ResolveLinks(path);

    struct stat old
    {
    };

    if (const FileError error = CheckTarget(target, old); error != FileError::None)
        return error;
    PartFile file(target, options.temporary, options.mode);
    const bool written = file.IsOpen() && (old.st_nlink == 0 || TakeOver(file.File(), old))
        && file.Write(bytes) && file.Sync() && file.KeepAs(target);
    if (!written)
        return ErrorOf(errno);
    SyncFolder(FolderOf(target));
    return FileError::None;
}

FileError CopyFile(const std::string& from, const std::string& to)
{
    if (!IsUsablePath(from) || !IsUsablePath(to))
        return FileError::NotFound;
    const Descriptor source(
        OpenPath(from, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    if (!source.IsOpen())
        return errno == ELOOP ? FileError::NotRegular : ErrorOf(errno);

    struct stat status
    {
    };

    if (::fstat(source.Get(), &status) != 0)
        return ErrorOf(errno);
    if (!S_ISREG(status.st_mode))
        return FileError::NotRegular;
    PartFile copy(to);
    const bool copied = copy.IsOpen() && CopyAll(source, copy.File())
        && ::fchmod(copy.File().Get(), status.st_mode & 0777) == 0 && copy.Sync()
        && copy.KeepAs(to);
    return copied ? FileError::None : ErrorOf(errno);
}

bool MoveFile(const std::string& from, const std::string& to)
{
    if (!IsUsablePath(from) || !IsUsablePath(to))
        return false;
    const LongPath old(from);
    const LongPath target(to);
    if (::renameat2(old.Folder(), old.Rest(), target.Folder(), target.Rest(), RENAME_NOREPLACE)
        == 0)
        return true;
    const bool otherDisk = errno == EXDEV;
    // Not every file system knows how to rename without replacing.
    if ((!otherDisk && errno != EINVAL) || IsThere(to))
        return false;
    if (!otherDisk)
        return ::renameat(old.Folder(), old.Rest(), target.Folder(), target.Rest()) == 0;
    if (CopyFile(from, to) != FileError::None)
        return false;
    if (::unlinkat(old.Folder(), old.Rest(), 0) == 0)
        return true;
    ::unlinkat(target.Folder(), target.Rest(), 0);
    return false;
}

int DeleteFile(const std::string& path)
{
    if (!IsUsablePath(path))
        return ENOENT;
    const LongPath place(path);
    if (::unlinkat(place.Folder(), place.Rest(), 0) == 0)
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

    return IsUsablePath(a) && IsUsablePath(b) && StatPath(a, first) == 0 && StatPath(b, second) == 0
        && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

std::string ResolveLinks(std::string path)
{
    constexpr int maximumLinks = 40; // as many as the system itself follows
    for (int i = 0; i < maximumLinks; ++i) {
        char target[PATH_MAX];
        const LongPath place(path);
        const ssize_t length = ::readlinkat(place.Folder(), place.Rest(), target, sizeof target);
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

    if (!IsUsablePath(path) || StatPath(path, status) != 0)
        return {};
    return { status.st_dev, status.st_ino, status.st_size, Nanoseconds(status.st_mtim),
        Nanoseconds(status.st_ctim) };
}

double LastWriteTime(const std::string& path)
{
    struct stat status
    {
    };

    if (!IsUsablePath(path) || StatPath(path, status) != 0)
        return 0;
    return static_cast<double>(status.st_mtim.tv_sec)
        + static_cast<double>(status.st_mtim.tv_nsec) / 1e9;
}

}
