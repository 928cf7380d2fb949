#include "apps/pxvis/ScriptText.h"

#include "engine2d/VisLimits.h"
#include "foundation/OQFileSystem.h"

#include <filesystem>

namespace pxvis {

namespace {

bool IsTooLarge(const std::string& path)
{
    static_assert(VisLimits::scriptFileBytes == 4 << 20, "the message names it");
    std::error_code fault;
    const auto size = std::filesystem::file_size(path, fault);
    return !fault && size > VisLimits::scriptFileBytes;
}

}

bool ReadScriptText(const std::string& path, OQString& text, std::string& error)
{
    const OQString script = OQString::FromUtf8(path);
    if (!OQFileSystem::FileExists(script))
        error = path + ": no such script";
    else if (!OQFileSystem::ReadTextFile(script, text, VisLimits::scriptFileBytes))
        error = path
            + (IsTooLarge(path) ? ": is larger than a script may be, 4 MiB: nothing of it is read"
                                : ": can't be read, or is no file");
    else
        return true;
    return false;
}

}
