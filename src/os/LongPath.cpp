#include "os/LongPath.h"

#include <climits>
#include <fcntl.h>

namespace pxvis::os {

LongPath::LongPath(const std::string& path)
    : m_rest(path.c_str())
{
    constexpr size_t most = PATH_MAX - 1; // bytes of a call
    size_t start = 0;
    Descriptor folder;
    while (path.size() - start > most) {
        // Behind the last "/" that fits; slashes at the end belong to the name.
        const size_t slash = path.rfind('/', start + most);
        const size_t next = path.find_first_not_of('/', slash);
        if (slash == std::string::npos || slash <= start || next == std::string::npos)
            return;
        const std::string step = path.substr(start, slash - start);
        folder = Descriptor(::openat(folder.IsOpen() ? folder.Get() : AT_FDCWD, step.c_str(),
            O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!folder.IsOpen())
            return;
        start = next;
    }
    m_rest = path.c_str() + start;
    m_folder = std::move(folder);
}

int LongPath::Folder() const
{
    return m_folder.IsOpen() ? m_folder.Get() : AT_FDCWD;
}

int OpenPath(const std::string& path, int flags, mode_t mode)
{
    const LongPath place(path);
    return ::openat(place.Folder(), place.Rest(), flags, mode);
}

int StatPath(const std::string& path, struct stat& status, int flags)
{
    const LongPath place(path);
    return ::fstatat(place.Folder(), place.Rest(), &status, flags);
}

}
