#include "os/UserFolders.h"

#include "os/File.h"
#include "os/ModulePath.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace pxvis::os {

namespace {

// Of the system's record of the user; empty if there is none.
std::string UserField(char* passwd::*field)
{
    std::vector<char> buffer(16 * 1024);
    passwd entry {};
    passwd* found = nullptr;
    const int failed = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found);
    return failed == 0 && found && found->*field ? found->*field : "";
}

// Services run without HOME.
std::string HomeFolder()
{
    std::string home = EnvironmentValue("HOME");
    return home.empty() ? UserField(&passwd::pw_dir) : home;
}

void CutSlashes(std::string& path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
}

}

std::string UserFolder(const char* variable, const char* belowHome)
{
    if (!PortableFolder().empty())
        return PortableUserFolder(PortableFolder());
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

const std::string& PortableFolder()
{
    // Never destroyed: threads may still ask while the process ends.
    static const auto* const portable = [] {
        std::string folder = ExecutableFolder();
        const bool isPortable = !folder.empty() && FileExists(folder + "/Portable.dat");
        return new std::string(isPortable ? folder : "");
    }();
    return *portable;
}

std::string PortableUserFolder(const std::string& portableFolder)
{
    return portableFolder + "/Application Data";
}

std::string UserName()
{
    std::string name = UserField(&passwd::pw_name);
    return name.empty() ? std::to_string(::geteuid()) : name;
}

std::string EnvironmentValue(const char* variable)
{
    const char* value = ::secure_getenv(variable);
    return value ? value : "";
}

}
