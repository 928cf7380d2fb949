#pragma once

#include "foundation/OQString.h"

#include <cstddef>

// What touches the disk. Every operation gives false, or an empty value, on failure. Any thread.
// FIXME: folders, safe replacement, the file finder and FindDataFile.
class OQFileSystem
{
public:
    // Text files are scripts, settings and pages, all from strangers.
    static constexpr size_t MaximumTextFileSize = 4 * 1024 * 1024; // bytes

    // A file of any kind but a folder.
    static bool FileExists(const OQString& path);

    // The text of a regular file: UTF-8, UTF-16 with a byte order mark, or else windows-1252, up to
    // the first zero character. A lone LF is read as CR LF. An empty path gives true and an empty
    // text. False, and an empty text, if the file can't be read, is of another kind or larger than
    // `maximumSize` bytes.
    static bool ReadTextFile(
        const OQString& path, OQString& text, size_t maximumSize = MaximumTextFileSize);

    // UTF-8 without a byte order mark. The old file stays whole until the new one is.
    static bool WriteTextFile(const OQString& path, const OQString& text);

    // Seconds since 1970; 0 if there is no such file.
    static double GetLastWriteTime(const OQString& path);
};
