#include "os/Path.h"

namespace pxvis::os {

bool IsUsablePath(const std::string& path)
{
    return !path.empty() && path.find('\0') == std::string::npos;
}

std::string FolderOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

}
