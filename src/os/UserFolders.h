#pragma once

#include <string>

namespace pxvis::os {

// One of the user's base folders of freedesktop.org, without "/" at its end: what the environment's
// `variable` (such as "XDG_CONFIG_HOME") says, or `belowHome` (such as ".config") in the user's
// home. Empty if neither is an absolute path. A portable program has one for all, beside itself.
std::string UserFolder(const char* variable, const char* belowHome);

// The folder of the running program if a file "Portable.dat" lies there, which says that the
// program takes everything of its user's along; else empty. Looked for once.
const std::string& PortableFolder();

// The base folder of a portable program in that folder.
std::string PortableUserFolder(const std::string& portableFolder);

// The name that the user logs in by; his number if the system doesn't know him.
std::string UserName();

// The value of a variable of the environment; empty without it, and in a program that runs with
// rights that its user doesn't have.
std::string EnvironmentValue(const char* variable);

}
