#pragma once

#include <string>

namespace pxvis::os {

// One of the user's base folders of freedesktop.org, without "/" at its end: what the environment's
// `variable` (such as "XDG_CONFIG_HOME") says, or `belowHome` (such as ".config") in the user's
// home. Empty if neither is an absolute path.
std::string XdgFolder(const char* variable, const char* belowHome);

// The value of a variable of the environment; empty without it, and in a program that runs with
// rights that its user doesn't have.
std::string EnvironmentValue(const char* variable);

// Makes the folder and those above it that are missing, each with `mode` less the process's mask.
// True as well if it was there.
bool MakeFolders(const std::string& path, unsigned mode);

}
