#include "os/UserFolders.h"

#include "os/File.h"
#include "os/ModulePath.h"

#include <cstdlib>

namespace pxvis::os {

std::string UserDataHome()
{
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data == '/') {
        std::string folder = data;
        while (folder.size() > 1 && folder.back() == '/')
            folder.pop_back();
        return folder;
    }
    if (const char* home = std::getenv("HOME"); home && *home == '/')
        return std::string(home) + "/.local/share";
    return {};
}

const std::string& PortableFolder()
{
    static const std::string portable = [] {
        std::string folder = ExecutableFolder();
        return !folder.empty() && FileExists(folder + "/Portable.dat") ? folder : std::string();
    }();
    return portable;
}

}
