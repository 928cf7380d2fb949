#include "host/CoverFile.h"

#include "os/Descriptor.h"
#include "os/Folder.h"
#include "os/UserFolders.h"

#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace pxvis::host {

namespace {

std::string CacheFolder()
{
    const std::string cache = os::UserFolder("XDG_CACHE_HOME", ".cache");
    return cache.empty() ? cache : cache + "/pxvis";
}

// Loaders judge by the content; the ending is for people and for strict loaders.
std::string_view Ending(const std::string& type)
{
    if (type == "image/jpeg" || type == "image/jpg")
        return ".jpg";
    if (type.starts_with("image/") && type.size() <= 16
        && type.find_first_not_of("abcdefghijklmnopqrstuvwxyz", 6) == std::string::npos)
        return std::string_view(type).substr(5);
    return "";
}

constexpr std::string_view namePrefix = "cover-";

// Between its making and its lock a file is nobody's.
bool IsYoung(const struct stat& status)
{
    constexpr time_t seconds = 60;
    return std::time(nullptr) - status.st_mtime < seconds;
}

// Files that have no lock any more are of processes that were killed.
void RemoveLeftCovers(const std::string& folder)
{
    constexpr size_t mostEntries = 10000;
    std::vector<os::FolderEntry> entries;
    bool isComplete = false;
    os::ListFolder(folder, mostEntries, entries, isComplete);
    for (const os::FolderEntry& entry : entries) {
        if (!entry.name.starts_with(namePrefix) || entry.isFolder || entry.isLink)
            continue;
        const std::string path = folder + '/' + entry.name;
        const os::Descriptor file(
            open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        struct stat status = {};
        if (file.IsOpen() && fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode)
            && status.st_uid == geteuid() && !IsYoung(status)
            && flock(file.Get(), LOCK_EX | LOCK_NB) == 0)
            unlink(path.c_str());
    }
}

// The path of the new file, empty if it could not be made and filled. `file` keeps it locked.
std::string WriteCover(const std::string& folder, const TrackTags& tags, os::Descriptor& file)
{
    std::string ending(Ending(tags.coverType));
    if (!ending.empty())
        ending[0] = '.';
    std::string path = folder + '/' + std::string(namePrefix) + "XXXXXX" + ending;
    file = os::Descriptor(mkostemps(path.data(), static_cast<int>(ending.size()), O_CLOEXEC));
    if (!file.IsOpen())
        return {};
    // Fails where locks are unknown, for RemoveLeftCovers as well.
    flock(file.Get(), LOCK_EX | LOCK_NB);
    if (file.Write({ reinterpret_cast<const char*>(tags.cover.data()), tags.cover.size() }))
        return path;
    unlink(path.c_str());
    return {};
}

}

CoverFile::CoverFile(const TrackTags& tags)
{
    if (tags.cover.empty())
        return;
    const std::string cache = CacheFolder();
    if (os::MakeFolders(cache, 0700)) {
        RemoveLeftCovers(cache);
        m_path = WriteCover(cache, tags, m_file);
    }
    std::error_code ignored;
    if (m_path.empty())
        m_path = WriteCover(std::filesystem::temp_directory_path(ignored), tags, m_file);
}

CoverFile::~CoverFile()
{
    if (!m_path.empty())
        unlink(m_path.c_str());
}

}
