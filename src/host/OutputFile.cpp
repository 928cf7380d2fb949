#include "host/OutputFile.h"

#include "os/Folder.h"
#include "os/Path.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

namespace pxvis::host {

static std::string Reason(int code)
{
    return std::generic_category().message(code);
}

// A device, a pipe or a folder must not be renamed over, whoever asks for it.
static bool MayTake(const std::string& path, bool replace, const char* advice, std::string& error)
{
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0) {
        if (errno == ENOENT)
            return true;
        error = path + ": " + Reason(errno);
        return false;
    }
    if (S_ISDIR(status.st_mode))
        error = path + ": is a folder";
    else if (S_ISLNK(status.st_mode) && stat(path.c_str(), &status) == 0
        && !S_ISREG(status.st_mode))
        error = path + ": is a link to something other than a file";
    else if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode))
        error = path + ": is not a regular file";
    else if (!replace)
        error = path + ": " + advice;
    else
        return true;
    return false;
}

static bool IsSameFile(const std::string& path, const os::Descriptor& file)
{
    struct stat named = {};
    struct stat held = {};
    return lstat(path.c_str(), &named) == 0 && fstat(file.Get(), &held) == 0
        && named.st_dev == held.st_dev && named.st_ino == held.st_ino;
}

// An unfinished file carries the sticky bit, which means nothing on a file: so that one of ours is
// told from what others, downloads for one, keep under such a name.
static bool IsUnfinishedOurs(const std::string& partPath)
{
    struct stat status = {};
    return lstat(partPath.c_str(), &status) == 0 && S_ISREG(status.st_mode)
        && (status.st_mode & S_ISVTX) && status.st_uid == geteuid();
}

static void MarkUnfinished(const os::Descriptor& file, bool unfinished)
{
    struct stat status = {};
    if (fstat(file.Get(), &status) != 0)
        return;
    const mode_t permissions = status.st_mode & 0777;
    // Where this can't be done, a leftover waits for --force.
    static_cast<void>(fchmod(file.Get(), unfinished ? permissions | S_ISVTX : permissions));
}

// False while another writer holds the file. The old content goes with its name, never by
// truncation: it may have a second name.
static bool RemoveLeftover(const std::string& partPath)
{
    const os::Descriptor file(
        open(partPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (!file.IsOpen()) {
        unlink(partPath.c_str());
        return true;
    }
    const bool busy = flock(file.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (!busy && IsSameFile(partPath, file))
        unlink(partPath.c_str());
    return !busy;
}

std::unique_ptr<OutputFile> OutputFile::Open(
    const std::string& path, bool replace, std::string& error)
{
    error.clear();
    if (!os::IsUsablePath(path) || path.back() == '/') {
        error = "\"" + path + "\": is not the name of a file";
        return nullptr;
    }
    if (!MayTake(path, replace, "exists already; --force replaces it", error))
        return nullptr;
    const std::string partPath = path + ".part";
    const char* const leftover = "exists already; --force replaces it";
    const bool takeOver = replace || IsUnfinishedOurs(partPath);
    if (!MayTake(partPath, takeOver, leftover, error))
        return nullptr;

    if (takeOver && !RemoveLeftover(partPath)) {
        error = path + ": is being written by another process";
        return nullptr;
    }
    os::Descriptor file(
        open(partPath.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (!file.IsOpen()) {
        error = errno == EEXIST ? partPath + ": " + leftover : path + ": " + Reason(errno);
        return nullptr;
    }
    // Tells another RemoveLeftover; fails where locks are unknown.
    flock(file.Get(), LOCK_EX | LOCK_NB);
    MarkUnfinished(file, true);
    return std::unique_ptr<OutputFile>(new OutputFile(path, replace, std::move(file)));
}

OutputFile::OutputFile(std::string path, bool replace, os::Descriptor file)
    : m_path(std::move(path))
    , m_partPath(m_path + ".part")
    , m_replace(replace)
    , m_file(std::move(file))
{
}

OutputFile::~OutputFile()
{
    Discard();
}

bool OutputFile::Write(const void* bytes, size_t count, std::string& error)
{
    if (m_file.Write({ static_cast<const char*>(bytes), count }))
        return true;
    error = m_path + ": " + Reason(errno);
    return false;
}

bool OutputFile::Rename(std::string& error)
{
    if (m_replace) {
        if (MayTake(m_path, true, "", error) && rename(m_partPath.c_str(), m_path.c_str()) != 0)
            error = m_path + ": " + Reason(errno);
        return error.empty();
    }
    int result
        = renameat2(AT_FDCWD, m_partPath.c_str(), AT_FDCWD, m_path.c_str(), RENAME_NOREPLACE);
    if (result != 0 && (errno == EINVAL || errno == ENOSYS)) {
        // File systems without that kind of rename; a second name is refused just as safely.
        result = link(m_partPath.c_str(), m_path.c_str());
        if (result == 0)
            unlink(m_partPath.c_str());
    }
    if (result != 0 && (errno == EPERM || errno == EOPNOTSUPP)) {
        // FAT and its kin know neither: what is left is a look beforehand.
        if (MayTake(m_path, false, "exists already", error))
            result = rename(m_partPath.c_str(), m_path.c_str());
        else
            errno = EEXIST;
    }
    if (result == 0)
        return true;
    const int code = errno;
    error = m_path + ": "
        + (code == EEXIST ? "has appeared meanwhile; the finished file is " + m_partPath
                          : Reason(code));
    if (code == EEXIST)
        m_file.Close(); // so that Discard leaves it
    return false;
}

bool OutputFile::Commit(std::string& error)
{
    error.clear();
    // Some file systems say only now that the disk is full; pipes and the like cannot be synced.
    if (fsync(m_file.Get()) != 0 && errno != EINVAL && errno != EROFS) {
        error = m_path + ": " + Reason(errno);
        Discard();
        return false;
    }
    if (!IsSameFile(m_partPath, m_file)) {
        error = m_path + ": another process has taken " + m_partPath + " away";
        Discard();
        return false;
    }
    MarkUnfinished(m_file, false);
    if (!Rename(error)) {
        Discard();
        return false;
    }
    // The name itself; without it the file is whole all the same.
    os::SyncFolder(os::FolderOf(m_path));
    m_file.Close();
    return true;
}

void OutputFile::Discard()
{
    if (!m_file.IsOpen())
        return;
    if (IsSameFile(m_partPath, m_file))
        unlink(m_partPath.c_str());
    m_file.Close();
}

}
