#pragma once

#include <string>

namespace pxvis::os {

// Could this be the name of a file at all? One with a zero inside would be another one's.
bool IsUsablePath(const std::string& path);

// The folder that the named one lies in, without "/" at its end; "." for a name alone.
std::string FolderOf(const std::string& path);

}
