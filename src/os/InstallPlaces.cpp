#include "os/InstallPlaces.h"

#include "os/ModulePath.h"

#include <cstdlib>
#include <memory>
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

bool IsBuildFolder(const std::string& folder)
{
    const std::unique_ptr<char, decltype(&std::free)> resolved(
        realpath(PXVIS_BUILD_BIN_FOLDER, nullptr), &std::free);
    return resolved && folder == resolved.get();
}

}

InstallPlaces InstallPlacesFrom(const std::string& moduleFolder)
{
    if (moduleFolder.empty())
        return {};
    if (IsBuildFolder(moduleFolder))
        return { moduleFolder, PXVIS_SOURCE_DATA_FOLDER, PXVIS_BUILD_LOCALE_FOLDER };
    std::string prefix;
    if (TakePrefix(moduleFolder, PXVIS_INSTALL_BINDIR, prefix)
        || TakePrefix(moduleFolder, PXVIS_INSTALL_MODULEDIR, prefix))
        return { prefix + "/" PXVIS_INSTALL_MODULEDIR, prefix + "/" PXVIS_INSTALL_DATADIR,
            prefix + "/" PXVIS_INSTALL_LOCALEDIR };
    return { moduleFolder, moduleFolder + "/data", moduleFolder + "/locale" };
}

const InstallPlaces& GetInstallPlaces()
{
    static const InstallPlaces places = InstallPlacesFrom(ModuleFolder());
    return places;
}

}
