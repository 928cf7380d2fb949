#include "os/StandardError.h"

#include "os/UserFolders.h"

#include <cerrno>
#include <unistd.h>

namespace pxvis::os {

void WriteStandardError(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        text.remove_prefix(static_cast<size_t>(written));
    }
}

void WriteDebugOutput(std::string_view text)
{
    if (EnvironmentValue("PXVIS_LOG").starts_with("stderr"))
        WriteStandardError(text);
}

}
