#pragma once

#include <string>

namespace pxvis::os {

// The file that holds this very code, an executable or a shared library, as an absolute path in
// which links are resolved: each module of the process that links this function gets its own path.
// Neither the working folder nor what the process was called by matters. Empty if the system can't
// tell. Asked once, then remembered.
const std::string& ModulePath();

// The folder of ModulePath() without a "/" at its end, but for the root folder. Empty likewise.
std::string ModuleFolder();

// The same for the program that runs in this process, whichever module asks.
std::string ExecutableFolder();

}
