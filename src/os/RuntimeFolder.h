#pragma once

#include <string>

namespace pxvis::os {

// A folder for what the user's processes share while they run, without "/" at its end: made if it
// isn't there, below $XDG_RUNTIME_DIR or else the folder for temporary files. Nobody else may look
// into it; empty if there is no such folder to be had. Any thread.
std::string RuntimeFolder();

}
