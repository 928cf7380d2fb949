#include "host/CoverFile.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace pxvis::host {

namespace {

std::string CacheFolder()
{
    const char* cache = std::getenv("XDG_CACHE_HOME");
    if (cache && cache[0] == '/')
        return std::string(cache) + "/pxvis";
    const char* home = std::getenv("HOME");
    return home && home[0] == '/' ? std::string(home) + "/.cache/pxvis" : std::string();
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

bool WriteAll(int file, const std::vector<unsigned char>& bytes)
{
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t written = write(file, bytes.data() + done, bytes.size() - done);
        if (written <= 0)
            return false;
        done += static_cast<size_t>(written);
    }
    return true;
}

// The path of the new file, empty if it could not be made and filled.
std::string WriteCover(const std::string& folder, const TrackTags& tags)
{
    std::string ending(Ending(tags.coverType));
    if (!ending.empty())
        ending[0] = '.';
    std::string path = folder + "/cover-XXXXXX" + ending;
    const int file = mkostemps(path.data(), static_cast<int>(ending.size()), O_CLOEXEC);
    if (file < 0)
        return {};
    const bool written = WriteAll(file, tags.cover);
    if (close(file) == 0 && written)
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
    std::error_code ignored;
    if (!cache.empty()) {
        std::filesystem::create_directories(std::filesystem::path(cache).parent_path(), ignored);
        mkdir(cache.c_str(), 0700);
        m_path = WriteCover(cache, tags);
    }
    if (m_path.empty())
        m_path = WriteCover(std::filesystem::temp_directory_path(ignored), tags);
}

CoverFile::~CoverFile()
{
    if (!m_path.empty())
        unlink(m_path.c_str());
}

}
