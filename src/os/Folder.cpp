#include "os/Folder.h"

#include "os/Descriptor.h"
#include "os/LongPath.h"
#include "os/Path.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace pxvis::os {

namespace {

struct CloseFolder
{
    void operator()(DIR* folder) const { ::closedir(folder); }
};

using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

bool IsDots(std::string_view name)
{
    return name == "." || name == "..";
}

// Takes the descriptor over, also on failure.
OpenFolder FolderFrom(int descriptor)
{
    OpenFolder folder(descriptor >= 0 ? ::fdopendir(descriptor) : nullptr);
    if (!folder && descriptor >= 0)
        ::close(descriptor);
    return folder;
}

// Each level holds a descriptor open, of which a process has few.
constexpr int deepestTree = 256;

class TreeDeleter
{
public:
    explicit TreeDeleter(const std::string& path)
        : m_path(path)
    {
    }

    // The entry `name` of an open folder, which must be a folder and no link.
    void DeleteFolder(int parent, const char* name, int depth)
    {
        OpenFolder folder = FolderFrom(depth > deepestTree
                ? -1
                : ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!folder) {
            Fail(depth > deepestTree ? ELOOP : errno);
            return;
        }
        const int descriptor = ::dirfd(folder.get());
        MakeWritable(descriptor);
        for (const std::string& entry : NamesIn(folder.get()))
            DeleteEntry(descriptor, entry, depth);
        folder.reset();
        if (::unlinkat(parent, name, AT_REMOVEDIR) != 0)
            Fail(errno);
    }

    const TreeFailure& Failure() const { return m_failure; }

private:
    static std::vector<std::string> NamesIn(DIR* folder)
    {
        std::vector<std::string> names;
        while (const dirent* entry = ::readdir(folder)) {
            if (!IsDots(entry->d_name))
                names.emplace_back(entry->d_name);
        }
        return names;
    }

    // A folder that may not be written keeps what is in it.
    static void MakeWritable(int descriptor)
    {
        struct stat status
        {
        };

        if (::fstat(descriptor, &status) == 0 && (status.st_mode & 0300) != 0300)
            ::fchmod(descriptor, (status.st_mode & 07777) | 0300);
    }

    void DeleteEntry(int folder, const std::string& name, int depth)
    {
        if (::unlinkat(folder, name.c_str(), 0) == 0 || errno == ENOENT)
            return;
        const size_t length = m_path.size();
        m_path += "/" + name;
        if (errno == EISDIR)
            DeleteFolder(folder, name.c_str(), depth + 1);
        else
            Fail(errno);
        m_path.resize(length);
    }

    void Fail(int number)
    {
        if (m_failure.number == 0 && number != ENOENT)
            m_failure = { number, m_path };
    }

    std::string m_path;
    TreeFailure m_failure;
};

}

bool FolderExists(const std::string& path)
{
    struct stat status
    {
    };

    return IsUsablePath(path) && StatPath(path, status) == 0 && S_ISDIR(status.st_mode);
}

bool MakeFolder(const std::string& path, unsigned mode)
{
    if (!IsUsablePath(path))
        return false;
    const LongPath place(path);
    return ::mkdirat(place.Folder(), place.Rest(), mode) == 0 || FolderExists(path);
}

bool MakeFolders(const std::string& path, unsigned mode)
{
    if (!IsUsablePath(path) || path.front() != '/')
        return false;
    if (FolderExists(path))
        return true;
    for (size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        if (!MakeFolder(path.substr(0, slash), mode))
            return false;
    }
    return MakeFolder(path, mode);
}

bool ListFolder(
    const std::string& path, size_t maximum, std::vector<FolderEntry>& entries, bool& isComplete)
{
    entries.clear();
    isComplete = true;
    if (!IsUsablePath(path))
        return false;
    const OpenFolder folder
        = FolderFrom(OpenPath(path, O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
    if (!folder)
        return false;
    while (const dirent* entry = ::readdir(folder.get())) {
        if (IsDots(entry->d_name))
            continue;
        if (entries.size() == maximum) {
            isComplete = false;
            break;
        }
        FolderEntry found { entry->d_name, entry->d_type == DT_DIR, entry->d_type == DT_LNK };
        if (entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN) {
            struct stat status
            {
            };

            const int descriptor = ::dirfd(folder.get());
            if (::fstatat(descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
                found.isLink = S_ISLNK(status.st_mode);
            if (::fstatat(descriptor, entry->d_name, &status, 0) == 0)
                found.isFolder = S_ISDIR(status.st_mode);
        }
        entries.push_back(std::move(found));
    }
    std::sort(entries.begin(), entries.end(),
        [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
    return true;
}

FolderIdentity IdentifyFolder(const std::string& path)
{
    struct stat status
    {
    };

    if (!IsUsablePath(path) || StatPath(path, status) != 0 || !S_ISDIR(status.st_mode))
        return {};
    return { status.st_dev, status.st_ino };
}

void SyncFolder(const std::string& path)
{
    const Descriptor folder(OpenPath(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.IsOpen())
        ::fsync(folder.Get());
}

TreeFailure DeleteTree(const std::string& path)
{
    std::string folder = path;
    while (!folder.empty() && folder.back() == '/')
        folder.pop_back();
    if (!IsUsablePath(folder) || IsDots(folder.substr(folder.rfind('/') + 1)))
        return { EINVAL, path };
    TreeDeleter deleter(folder);
    const LongPath place(folder);
    deleter.DeleteFolder(place.Folder(), place.Rest(), 0);
    return deleter.Failure();
}

}
