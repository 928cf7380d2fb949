#include "foundation/OQLoadLibrary.h"

#include "foundation/OQLog.h"
#include "os/StandardError.h"

#include <cerrno>

bool OQLoadLibrary(pxvis::os::DynamicLibrary& holder, const OQString& path, uint32_t flags)
{
    holder.Close();
    if (path.IsEmpty())
        return false;
    errno = 0;
    if (holder.Open(path.ToUtf8()))
        return true;
    const int number = errno;
    if (flags & OQLoadLogFailure) {
        OQLog(OQLogError, u"OQLoadLibrary", u"Loading %s failed, error: %d", { path, number });
        pxvis::os::WriteDebugOutput(
            OQFormat(u"\n\nERROR in OQLoadLibrary: errno=%d, file=%s\n\n", { number, path })
                .ToUtf8());
    }
    return false;
}
