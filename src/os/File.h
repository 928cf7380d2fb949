#pragma once

#include "os/Descriptor.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pxvis::os {

// Paths are UTF-8, of any length; one with a zero inside names nothing. Any thread.

enum class FileError
{
    None,
    NotFound,
    NotRegular, // a folder, a device, a pipe
    TooLarge,
    Denied,
    Failed, // anything else: the disk is full, the device doesn't answer
};

// A file of any kind but a folder.
bool FileExists(const std::string& path);

// Of a regular file, in bytes; -1 if there is none of that name.
int64_t FileSize(const std::string& path);

// Opens a regular file for reading and tells its size in bytes, which may change from then on.
// Never waits for a writer, as opening a pipe would.
FileError OpenRegularFile(const std::string& path, Descriptor& file, int64_t& size);

// The whole of a regular file of at most `maximumSize` bytes, opened like that. `bytes` is empty
// after a failure.
FileError ReadFile(const std::string& path, size_t maximumSize, std::string& bytes);

// Writes a file that is there in its new form or not at all: the bytes go to a new file beside it,
// reach the disk, and then take the name. Permissions, group and, as far as the system allows it,
// owner of a file that was there stay, links are followed, and one that may not be written is left
// alone.
//
// Writers who take turns by a lock give `temporary`, the name of the new file until then: what a
// killed one left behind is then used up by the next. `mode`: permissions of a file that wasn't
// there, less the process's mask.
struct WriteOptions
{
    std::string temporary; // without a folder; empty: a name that nobody has
    unsigned mode = 0666;
};

FileError WriteFile(
    const std::string& path, std::string_view bytes, const WriteOptions& options = {});

// What tells one state of a file from another.
struct FileStamp
{
    uint64_t device = 0;
    uint64_t number = 0;
    int64_t size = -1; // bytes; -1: there is no file
    int64_t written = 0; // nanoseconds since 1970
    int64_t changed = 0; // the same, permissions and names included

    bool operator==(const FileStamp&) const = default;

    // False while a later change might still get the same stamp, since the system's clock for files
    // ticks slowly and numbers of deleted files are given out anew.
    bool IsSettled() const;
};

FileStamp StampOf(const std::string& path);

// A copy of a regular file's bytes and permissions under another name, in place of the file or link
// that had it. A link is not followed on either side. As whole or absent as with WriteFile.
FileError CopyFile(const std::string& from, const std::string& to);

// Gives a file another name, on another disk too. False, with both as they were, if there is
// something under the new name already.
bool MoveFile(const std::string& from, const std::string& to);

// Removes the file or the link; one that may not be written too. 0, or the system's error number.
// A file that isn't there is removed.
int DeleteFile(const std::string& path);

// Two names of one file that is there.
bool IsSameFile(const std::string& a, const std::string& b);

// The file that links lead to, which need not be there yet. The path itself if it is no link.
std::string ResolveLinks(std::string path);

// Seconds since 1970, or 0 if there is no such file.
double LastWriteTime(const std::string& path);

}
