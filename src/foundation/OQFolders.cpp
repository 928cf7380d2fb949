#include "foundation/OQFolders.h"

#include "foundation/IOQTools.h"
#include "foundation/OQDllString.h"
#include "foundation/OQFileSystem.h"
#include "foundation/OQSharedMemory.h"
#include "foundation/OQSiblingModules.h"
#include "os/InstallPlaces.h"
#include "os/UserFolders.h"

#include <memory>

namespace {

// Empty for an empty one.
OQString WithSlash(OQString folder)
{
    if (!folder.IsEmpty() && !folder.EndsWith(u"/"))
        folder += u'/';
    return folder;
}

OQString FolderFrom(const std::string& path)
{
    return WithSlash(OQString::FromUtf8(path));
}

// Empty if the user has chosen none, or none that can be used.
OQString ChosenTempLocation()
{
    constexpr const OQChar* valueName = u"File Location - Temp Location";
    IOQTools* tools = OQSiblingModules::Get().Tools();
    IOQSettings* settings = tools ? tools->GetSettings(1) : nullptr;
    const std::unique_ptr<IOQSettingsKey> key(
        settings ? settings->OpenKey(u"Properties", OQSettingsUser, false) : nullptr);
    if (!key)
        return {};
    OQString folder;
    OQDllString value(folder);
    key->GetString(valueName, u"", value);
    folder.Replace(u'\\', u'/');
    if (folder.IsEmpty() || folder == u"/")
        return {};
    folder = WithSlash(folder) + u"Tarnwick";
    if (OQFileSystem::MakeDirectoryTree(folder) && folder.StartsWith(u"/"))
        return folder;
    key->DeleteValue(valueName);
    return {};
}

}

OQProcessFolders OQProcessFolders::From(const std::string& portableFolder,
    const std::string& dataHome, const pxvis::os::InstallPlaces& places)
{
    OQProcessFolders folders;
    folders.portable = !portableFolder.empty();
    folders.module = FolderFrom(places.siblings);
    folders.install = FolderFrom(folders.portable ? portableFolder : places.data);
    folders.applicationData
        = FolderFrom(folders.portable ? pxvis::os::PortableUserFolder(portableFolder) : dataHome);
    if (!folders.applicationData.IsEmpty())
        folders.data = folders.applicationData + u"pxvis/";
    return folders;
}

OQProcessFolders OQProcessFolders::Get()
{
    return OQSharedMemory::Get().GetFolders();
}

OQString OQFolders::GetInstallFolder()
{
    return OQProcessFolders::Get().install;
}

OQString OQFolders::GetModuleFolder()
{
    return OQProcessFolders::Get().module;
}

OQString OQFolders::GetDataFolder()
{
    const OQProcessFolders folders = OQProcessFolders::Get();
    if (folders.data.IsEmpty() && !folders.install.IsEmpty())
        return folders.install + u"Data/";
    return folders.data;
}

OQString OQFolders::GetAppDataFolder()
{
    OQString folder;
    IOQTools* tools = OQSiblingModules::Get().Tools();
    if (const IOQTheme* theme = tools ? tools->GetTheme(1) : nullptr) {
        OQDllString text(folder);
        theme->GetDataFolder(text);
    }
    const OQString own = OQProcessFolders::Get().applicationData;
    if (folder.IsEmpty() && !own.IsEmpty())
        folder = own + u"Tarnwick/Generic";
    return WithSlash(folder);
}

OQString OQFolders::GetTempLocation()
{
    OQString folder = ChosenTempLocation();
    const OQString own = GetAppDataFolder();
    if (folder.IsEmpty() && !own.IsEmpty()) {
        folder = own + u"Temp";
        OQFileSystem::MakeDirectoryTree(folder);
    }
    return WithSlash(folder);
}

OQString OQFolders::GetCacheFolder()
{
    const OQString folder = FolderFrom(pxvis::os::UserFolder("XDG_CACHE_HOME", ".cache"));
    return folder.IsEmpty() ? folder : folder + u"pxvis/";
}
