#pragma once

#include "foundation/OQString.h"

namespace pxvis::os {
struct InstallPlaces;
}

// Where a process has its folders; each with "/" at its end, or empty if the system doesn't tell.
// All modules of a process have the same ones, worked out by the first that asks.
struct OQProcessFolders
{
    OQString install; // what is shipped: "Visualizations" and more
    OQString data; // the same for what the user made or changed
    OQString module; // the sibling modules
    OQString applicationData; // of all of the user's programs
    bool portable = false; // the program takes its user's files along, beside itself

    // Any thread.
    static OQProcessFolders Get();

    // The rule behind it. Both folders are without "/" at their ends and may be empty;
    // `portableFolder` is that of a portable program.
    static OQProcessFolders From(const std::string& portableFolder, const std::string& dataHome,
        const pxvis::os::InstallPlaces& places);
};

// The folders as the rest of the system asks for them, each with "/" at its end, or empty where
// there is none, as for a user without a home. Any thread.
class OQFolders
{
public:
    static OQString GetInstallFolder();
    static OQString GetModuleFolder();
    static OQString GetDataFolder();

    // For what the product keeps for the user beside his files: the theme's choice, or a folder of
    // our own without the tools module.
    static OQString GetAppDataFolder();

    // For files that may go at any time; made if it isn't there. The user may have chosen another
    // place for it; a choice that can't be used is dropped from the settings.
    static OQString GetTempLocation();

    // For copies of what can be had again. Not made: whoever needs it makes it his user's alone.
    static OQString GetCacheFolder();
};
