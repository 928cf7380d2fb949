#include "os/FileSize.h"

#include <sys/stat.h>

namespace pxvis::os {

int64_t FileSize(const std::string& path)
{
    struct stat status
    {
    };

    const bool isName = path.find('\0') == std::string::npos;
    if (!isName || ::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return -1;
    return status.st_size;
}

}
