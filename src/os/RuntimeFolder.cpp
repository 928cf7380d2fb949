#include "os/RuntimeFolder.h"

#include "os/Folder.h"
#include "os/UserFolders.h"

#include <sys/stat.h>
#include <unistd.h>

namespace pxvis::os {

namespace {

// Somebody else may have made it first where everybody may write.
bool MakeOwn(const std::string& path)
{
    struct stat status
    {
    };

    return MakeFolder(path, 0700) && ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)
        && status.st_uid == ::geteuid() && (status.st_mode & 077) == 0;
}

}

std::string RuntimeFolder()
{
    const std::string runtime = EnvironmentValue("XDG_RUNTIME_DIR");
    if (runtime.starts_with('/')) {
        std::string own = runtime + "/pxvis";
        if (MakeOwn(own))
            return own;
    }
    std::string temporary = EnvironmentValue("TMPDIR");
    if (!temporary.starts_with('/'))
        temporary = "/tmp";
    std::string own = temporary + "/pxvis-" + std::to_string(::geteuid());
    return MakeOwn(own) ? own : std::string();
}

}
