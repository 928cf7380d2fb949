#include "host/CoverFile.h"

#include "os/Descriptor.h"
#include "os/Folder.h"
#include "os/UserFolders.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <unistd.h>

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

// The path of the new file, empty if it could not be made and filled.
std::string WriteCover(const std::string& folder, const TrackTags& tags)
{
    std::string ending(Ending(tags.coverType));
    if (!ending.empty())
        ending[0] = '.';
    std::string path = folder + "/cover-XXXXXX" + ending;
    os::Descriptor file(mkostemps(path.data(), static_cast<int>(ending.size()), O_CLOEXEC));
    if (!file.IsOpen())
        return {};
    if (file.Write({ reinterpret_cast<const char*>(tags.cover.data()), tags.cover.size() })
        && file.Close())
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
    if (os::MakeFolders(cache, 0700))
        m_path = WriteCover(cache, tags);
    std::error_code ignored;
    if (m_path.empty())
        m_path = WriteCover(std::filesystem::temp_directory_path(ignored), tags);
}

CoverFile::~CoverFile()
{
    if (!m_path.empty())
        unlink(m_path.c_str());
}

}
