#include "os/XdgFolder.h"

#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace pxvis::os {

namespace {

// Services run without HOME.
std::string HomeFolder()
{
    std::string home = EnvironmentValue("HOME");
    if (!home.empty())
        return home;
    std::vector<char> buffer(16 * 1024);
    passwd entry {};
    passwd* found = nullptr;
    const int failed = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found);
    return failed == 0 && found && found->pw_dir ? found->pw_dir : "";
}

void CutSlashes(std::string& path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
}

bool IsFolder(const std::string& path)
{
    struct stat status
    {
    };

    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}

std::string EnvironmentValue(const char* variable)
{
    const char* value = ::secure_getenv(variable);
    return value ? value : "";
}

std::string XdgFolder(const char* variable, const char* belowHome)
{
    std::string folder = EnvironmentValue(variable);
    if (folder.empty() || folder.front() != '/') {
        folder = HomeFolder();
        if (folder.empty() || folder.front() != '/')
            return {};
        CutSlashes(folder);
        folder += std::string("/") + belowHome;
    }
    CutSlashes(folder);
    return folder;
}

bool MakeFolders(const std::string& path, unsigned mode)
{
    if (path.empty() || path.front() != '/' || path.find('\0') != std::string::npos)
        return false;
    if (IsFolder(path))
        return true;
    for (size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        const std::string above = path.substr(0, slash);
        if (::mkdir(above.c_str(), mode) != 0 && !IsFolder(above))
            return false;
    }
    return ::mkdir(path.c_str(), mode) == 0 || (errno == EEXIST && IsFolder(path));
}

}
