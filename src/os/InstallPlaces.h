#pragma once

#include <string>

namespace pxvis::os {

// Where the files of this installation lie, as absolute paths without "/" at their ends. Empty if
// the system can't tell where we are.
struct InstallPlaces
{
    std::string siblings; // the sibling modules
    std::string data; // what is shipped: scripts, art, pages
    std::string locale; // message catalogues, <language>/LC_MESSAGES/pxvis.mo
};

// Worked out from the place of the module that this code is linked into, at the first call. In the
// build tree the data are the source's own; installed, each lies at a fixed place from the prefix,
// wherever that was moved; any other module is taken to have its siblings beside it, and the data
// in a folder "data" there.
const InstallPlaces& GetInstallPlaces();

// The rule behind it: `moduleFolder` is absolute.
InstallPlaces InstallPlacesFrom(const std::string& moduleFolder);

}
