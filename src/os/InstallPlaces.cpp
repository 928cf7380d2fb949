#include "os/InstallPlaces.h"

#include "os/File.h"
#include "os/ModulePath.h"

#include <string_view>

namespace pxvis::os {

namespace {

// "/usr" for "/usr/bin" and "bin"; empty for the root; the bool tells whether it fits.
bool TakePrefix(std::string_view folder, std::string_view below, std::string& prefix)
{
    if (!folder.ends_with(below) || folder.size() <= below.size()
        || folder[folder.size() - below.size() - 1] != '/')
        return false;
    prefix = folder.substr(0, folder.size() - below.size() - 1);
    return true;
}

// Programs in a build tree have a file beside them that says where the data and the catalogues lie,
// a line each. An installation has none, so that nothing of it depends on where it was built.
bool ReadBuildPlaces(const std::string& folder, InstallPlaces& places)
{
    constexpr size_t maximumSize = 16384;
    std::string text;
    if (ReadFile(folder + "/" PXVIS_BUILD_PLACES_FILE, maximumSize, text) != FileError::None)
        return false;
    const size_t line = text.find('\n');
    if (line == std::string::npos || text.back() != '\n')
        return false;
    places = { folder, text.substr(0, line), text.substr(line + 1, text.size() - line - 2) };
    return true;
}

}

InstallPlaces InstallPlacesFrom(const std::string& moduleFolder)
{
    InstallPlaces places;
    if (moduleFolder.empty() || ReadBuildPlaces(moduleFolder, places))
        return places;
    std::string prefix;
    if (TakePrefix(moduleFolder, PXVIS_INSTALL_BINDIR, prefix)
        || TakePrefix(moduleFolder, PXVIS_INSTALL_MODULEDIR, prefix))
        return { prefix + "/" PXVIS_INSTALL_MODULEDIR, prefix + "/" PXVIS_INSTALL_DATADIR,
            prefix + "/" PXVIS_INSTALL_LOCALEDIR };
    return { moduleFolder, moduleFolder + "/data", moduleFolder + "/locale" };
}

const InstallPlaces& GetInstallPlaces()
{
    // Never destroyed: threads may still ask while the process ends.
    static const auto* const places = new InstallPlaces(InstallPlacesFrom(ModuleFolder()));
    return *places;
}

}
