#include "foundation/OQDataRoots.h"

#include "foundation/OQFileFinder.h"
#include "foundation/OQFileSystem.h"
#include "foundation/OQFolders.h"
#include "os/Folder.h"
#include "os/InstallPlaces.h"

#include <algorithm>

OQDataRoots OQDataRoots::Get()
{
    const OQProcessFolders folders = OQProcessFolders::Get();
    OQDataRoots roots { folders.data, folders.install };
    // A program that was made portable by that file alone goes on with what it came with.
    if (folders.portable && !roots.HasFolder(u"Visualizations"))
        roots.shipped = OQString::FromUtf8(pxvis::os::GetInstallPlaces().data) + u"/";
    return roots;
}

OQString OQDataRoots::FindFile(const OQString& relative) const
{
    for (const OQString* root : { &user, &shipped }) {
        if (!root->IsEmpty() && OQFileSystem::FileExists(*root + relative))
            return *root + relative;
    }
    return {};
}

bool OQDataRoots::HasFolder(const OQString& relative) const
{
    for (const OQString* root : { &user, &shipped }) {
        if (!root->IsEmpty() && pxvis::os::FolderExists((*root + relative).ToUtf8()))
            return true;
    }
    return false;
}

OQArray<OQDataFile> OQDataRoots::List(const OQString& folder, const OQString& pattern) const
{
    OQArray<OQDataFile> files;
    for (const OQString* root : { &user, &shipped }) {
        if (root->IsEmpty())
            continue;
        OQFileFinder finder(*root + folder, pattern, OQFinderDepth::TreeAndLinks);
        while (finder.Next()) {
            if (!finder.IsFolder())
                files.Add({ finder.GetRelativePath(), finder.GetPath() });
        }
    }
    const auto before
        = [](const OQDataFile& a, const OQDataFile& b) { return a.relative < b.relative; };
    const auto same
        = [](const OQDataFile& a, const OQDataFile& b) { return a.relative == b.relative; };
    std::stable_sort(files.begin(), files.end(), before); // the user's file stays in front
    files.SetSize(static_cast<int>(std::unique(files.begin(), files.end(), same) - files.begin()));
    return files;
}

OQString OQDataRoots::PathForSaving(const OQString& path) const
{
    if (user.IsEmpty() || shipped.IsEmpty() || !path.StartsWith(shipped))
        return path;
    return user + path.Mid(shipped.GetLength());
}
