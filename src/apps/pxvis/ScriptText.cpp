#include "apps/pxvis/ScriptText.h"

#include "engine2d/VisLimits.h"
#include "foundation/OQFileSystem.h"

namespace pxvis {

bool ReadScriptText(const std::string& path, OQString& text, std::string& error)
{
    const OQString script = OQString::FromUtf8(path);
    if (!OQFileSystem::FileExists(script))
        error = path + ": no such script";
    else if (!OQFileSystem::ReadTextFile(script, text, VisLimits::scriptFileBytes))
        error = path + ": can't be read, or is no file of at most 4 MiB";
    else
        return true;
    return false;
}

}
