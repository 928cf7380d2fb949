#pragma once

#include "foundation/OQString.h"

#include <cstddef>

struct OQDataRoots;

// The kinds of data files that the user may have made his own versions of.
enum OQDataKind : int
{
    OQDataArt = 3,
    OQDataDefaultPages = 7,
    OQDataCustomPages = 8,
};

// What touches the disk. Every operation gives false, or an empty value, on failure. Any thread.
class OQFileSystem
{
public:
    // Text files are scripts, settings and pages, all from strangers.
    static constexpr size_t MaximumTextFileSize = 4 * 1024 * 1024; // bytes

    // A file of any kind but a folder.
    static bool FileExists(const OQString& path);

    // The text of a regular file, or of what a server sends for an address (a path with "://" where
    // no file is), which must not be silent for more than four seconds: UTF-8, UTF-16 with a byte
    // order mark, or else windows-1252, up to the first zero character. A lone LF is read as CR LF.
    // An empty path gives true and an empty text. False, and an empty text, if the file can't be
    // read, is of another kind or larger than `maximumSize` bytes.
    static bool ReadTextFile(
        const OQString& path, OQString& text, size_t maximumSize = MaximumTextFileSize);

    // UTF-8 without a byte order mark. Makes the folders that are missing. The old file stays whole
    // until the new one is.
    static bool WriteTextFile(const OQString& path, const OQString& text);

    // Makes a folder and those above it. The tools module may forbid the place, and without it no
    // folder is made. True, with nothing done, for a path that doesn't begin with "/".
    static bool MakeDirectoryTree(const OQString& path);

    // Also one that may not be written; of a link the link. A file that isn't there is deleted.
    static bool DeleteFile(const OQString& path);

    // Puts the file `source` in place of `target`. On failure `target` is as it was, and `source`
    // is gone.
    static bool SafeReplaceFile(const OQString& target, const OQString& source);

    // With all in it. Links go, what they lead to stays. A folder that isn't there is deleted.
    static bool DeleteDirectory(const OQString& path);

    // Copies all files and folders in `from` into `to`, over what is there; links are left out, and
    // anything else is a failure. Goes on after one.
    static bool CopyDirectory(const OQString& from, const OQString& to);

    // The path of a data file, the user's own one first. A name "image:Logo" stands for a picture
    // of some kind, if there is one in the user's language. Empty if there is none, for a name
    // that leads out of the folders of its kind, and for other kinds than those above.
    static OQString FindDataFile(const OQString& name, int kind);
    static OQString FindDataFile(const OQString& name, int kind, const OQDataRoots& roots);

    // Seconds since 1970; 0 if there is no such file.
    static double GetLastWriteTime(const OQString& path);
};
