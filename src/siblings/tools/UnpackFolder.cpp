#include "siblings/tools/UnpackFolder.h"

#include "os/Folder.h"
#include "os/Path.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace pxvis::tools {

namespace {

constexpr const char* kContents = "/contents";

bool IsFreeFor(const std::string& target)
{
    std::vector<os::FolderEntry> entries;
    bool isComplete = false;
    if (os::ListFolder(target, 1, entries, isComplete))
        return entries.empty();

    struct stat status
    {
    };

    return ::lstat(target.c_str(), &status) != 0 && errno == ENOENT;
}

}

UnpackFolder::UnpackFolder(std::string target)
    : m_target(std::move(target))
{
    while (m_target.size() > 1 && m_target.back() == '/')
        m_target.pop_back();
    if (!os::IsUsablePath(m_target) || m_target.front() != '/' || !IsFreeFor(m_target))
        return;
    std::string pattern = os::FolderOf(m_target) + "/.pxvis-unpack-XXXXXX";
    if (!::mkdtemp(pattern.data()))
        return;
    m_secret = pattern;
    const std::string contents = m_secret + kContents;
    if (!os::MakeFolder(contents))
        return;
    m_folder = os::Descriptor(::open(contents.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));

    struct stat status
    {
    };

    if (m_folder.IsOpen() && ::stat(m_target.c_str(), &status) == 0)
        ::fchmod(m_folder.Get(), status.st_mode & 07777); // it may be its owner's alone
}

UnpackFolder::~UnpackFolder()
{
    if (!m_secret.empty())
        os::DeleteTree(m_secret);
}

// Archives from Windows may have "\" between the names, which is taken for "/" everywhere.
bool UnpackFolder::Normalize(std::string_view name, std::string& path)
{
    path.clear();
    const bool hasDrive = name.find(":/") == 1 || name.find(":\\") == 1;
    if (name.empty() || name.size() > kMaxPath || name.front() == '/' || name.front() == '\\'
        || hasDrive || name.find('\0') != std::string_view::npos)
        return false;
    int levels = 0;
    while (!name.empty()) {
        const std::string_view part = name.substr(0, name.find_first_of("/\\"));
        name.remove_prefix(part.size() < name.size() ? part.size() + 1 : part.size());
        if (part.empty() || part == ".")
            continue;
        if (part == ".." || ++levels > kMaxLevels)
            return false;
        path.append(path.empty() ? "" : "/").append(part);
    }
    return true;
}

// There are no links in the folder, so no name in it leads out.
bool UnpackFolder::MakeFolder(const std::string& path, int& made) const
{
    made = 0;
    for (size_t end = 0; end < path.size();) {
        end = std::min(path.find('/', end + 1), path.size());
        const std::string level = path.substr(0, end);
        if (::mkdirat(m_folder.Get(), level.c_str(), 0777) == 0)
            ++made;
        else if (errno != EEXIST)
            return false;
    }
    return true;
}

os::Descriptor UnpackFolder::MakeFile(const std::string& path, bool isProgram) const
{
    return os::Descriptor(::openat(m_folder.Get(), path.c_str(),
        O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
        isProgram ? 0777 : 0666));
}

bool UnpackFolder::Keep()
{
    return std::rename((m_secret + kContents).c_str(), m_target.c_str()) == 0;
}

}
