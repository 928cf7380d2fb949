#pragma once

#include <string>

namespace pxvis::os {

// The folder below which programs keep a user's data: $XDG_DATA_HOME, or .local/share of $HOME; no
// "/" at its end. Empty if neither names an absolute path.
std::string UserDataHome();

// The folder of the running program if a file "Portable.dat" lies there, which says that the
// program takes everything of its user's along; else empty. Looked for once.
const std::string& PortableFolder();

}
