#include "os/ModulePath.h"

#include "os/Path.h"

#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <link.h>
#include <memory>
#include <unistd.h>
#include <vector>

namespace pxvis::os {

namespace {

std::string ExecutablePath()
{
    std::vector<char> path(PATH_MAX);
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<size_t>(length)) : std::string();
}

// The loader keeps a library's name as it was given, which may be relative to a working folder long
// left, and beside it the folder that this meant at that time.
std::string LibraryPath(const char* name)
{
    std::string path = name;
    if (path.front() != '/') {
        void* handle = dlopen(name, RTLD_LAZY | RTLD_NOLOAD);
        if (!handle)
            return {};
        std::vector<char> folder(
            2 * size_t { PATH_MAX }); // working folder + name, PATH_MAX at most each
        const bool known = dlinfo(handle, RTLD_DI_ORIGIN, folder.data()) == 0;
        dlclose(handle);
        if (!known)
            return {};
        path = std::string(folder.data()) + "/" + path.substr(path.rfind('/') + 1);
    }
    const std::unique_ptr<char, decltype(&std::free)> resolved(
        realpath(path.c_str(), nullptr), &std::free);
    return resolved ? resolved.get() : path;
}

// Empty for an unknown one.
std::string FolderOfModule(const std::string& path)
{
    return path.empty() ? path : FolderOf(path);
}

std::string FindModulePath()
{
    static const char anchor = 0; // an address that lies in this module
    Dl_info info {};
    void* extra = nullptr;
    if (!dladdr1(&anchor, &info, &extra, RTLD_DL_LINKMAP) || !extra)
        return {};
    // The main program has no name of its own there; dli_fname is its argv[0], which is anything.
    const char* name = static_cast<const link_map*>(extra)->l_name;
    return name && *name ? LibraryPath(name) : ExecutablePath();
}

}

const std::string& ModulePath()
{
    static const std::string path = FindModulePath();
    return path;
}

std::string ModuleFolder()
{
    return FolderOfModule(ModulePath());
}

std::string ExecutableFolder()
{
    return FolderOfModule(ExecutablePath());
}

}
