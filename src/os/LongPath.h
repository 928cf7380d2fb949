#pragma once

#include "os/Descriptor.h"

#include <string>
#include <sys/stat.h>

namespace pxvis::os {

// A path of any length for the system's calls, which take less than PATH_MAX bytes at once: an open
// folder, and what is left of the path from there. Nearly always that is no folder and the path
// itself, which must live as long. Where the way to it can't be gone, the calls fail by
// ENAMETOOLONG.
class LongPath
{
public:
    explicit LongPath(const std::string& path);

    int Folder() const; // for openat and its like

    const char* Rest() const { return m_rest; }

private:
    Descriptor m_folder;
    const char* m_rest;
};

// Open and stat for such paths: -1, with the reason in errno, as the system has it.
int OpenPath(const std::string& path, int flags, mode_t mode = 0);
int StatPath(const std::string& path, struct stat& status, int flags = 0);

}
