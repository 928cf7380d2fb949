#include "siblings/tools/CFiles.h"

#include "foundation/OQString.h"

#include <climits>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::string_view kSystemFolders[] = { "/proc", "/sys", "/dev", "/boot", "/bin", "/sbin",
    "/lib", "/lib32", "/lib64", "/libx32", "/etc", "/usr" };
// In a system folder, but for what people add to it.
constexpr std::string_view kLocalFolder = "/usr/local";

bool LiesIn(std::string_view path, std::string_view folder)
{
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

bool IsSystemPath(std::string_view path)
{
    if (LiesIn(path, kLocalFolder))
        return false;
    for (const std::string_view folder : kSystemFolders) {
        if (LiesIn(path, folder))
            return true;
    }
    return false;
}

// With one "/" in front of each name and none behind; empty for a path that may not be one.
std::string Normalize(std::string_view path)
{
    if (path.empty() || path.front() != '/' || path.size() >= PATH_MAX)
        return {};
    std::string normal;
    while (!path.empty()) {
        path.remove_prefix(1);
        const std::string_view name = path.substr(0, path.find_first_of("/\\"));
        path.remove_prefix(name.size());
        if (name == "..")
            return {};
        if (!name.empty() && name != ".")
            normal.append("/").append(name);
    }
    return normal.empty() ? "/" : normal;
}

// Where links lead the part of the path that is there.
std::string Resolve(std::string path)
{
    while (path.size() > 1) {
        const std::unique_ptr<char, decltype(&std::free)> real(
            realpath(path.c_str(), nullptr), &std::free);
        if (real)
            return real.get();
        path.resize(path.rfind('/'));
    }
    return "/";
}

}

bool CFiles::MayMakeFolder(const OQChar* path) const
{
    try {
        const std::string normal = Normalize(OQString(path).ToUtf8());
        return !normal.empty() && !IsSystemPath(normal) && !IsSystemPath(Resolve(normal));
    } catch (...) {
        return false;
    }
}
