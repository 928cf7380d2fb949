#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pxvis::os {

// Paths are UTF-8, of any length; one with a zero inside names nothing. Any thread.

// A folder, or a link to one.
bool FolderExists(const std::string& path);

// With `mode` less the process's mask. True as well if the folder is there already. Its parent must
// be there.
bool MakeFolder(const std::string& path, unsigned mode = 0777);

// Makes the folder and those above it that are missing, each with `mode` less the process's mask.
// True as well if it was there. The path must be absolute.
bool MakeFolders(const std::string& path, unsigned mode);

struct FolderEntry
{
    std::string name;
    bool isFolder = false; // of links: what they lead to
    bool isLink = false;
};

// What lies in a folder, sorted by the bytes of the names, without "." and "..". False if it can't
// be read; of more than `maximum` entries the rest is left out.
bool ListFolder(
    const std::string& path, size_t maximum, std::vector<FolderEntry>& entries, bool& isComplete);

// The same for two paths that lead to one folder; both 0 if there is none.
struct FolderIdentity
{
    uint64_t device = 0;
    uint64_t number = 0;

    bool operator<(const FolderIdentity& other) const
    {
        return device != other.device ? device < other.device : number < other.number;
    }
};

FolderIdentity IdentifyFolder(const std::string& path);

// So that the names in it outlive a power cut as well; not every file system can promise that.
void SyncFolder(const std::string& path);

struct TreeFailure
{
    int number = 0; // the system's error number; 0 if nothing failed
    std::string path;
};

// Deletes a folder with all in it, whatever its files may be used for. Links go, and what they lead
// to stays, even if somebody exchanges folders for links meanwhile. Goes on after a failure and
// gives the first one. A folder that isn't there is deleted; a link to one, and the root, aren't.
TreeFailure DeleteTree(const std::string& path);

}
