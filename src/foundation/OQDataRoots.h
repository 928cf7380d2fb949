#pragma once

#include "foundation/OQArray.h"
#include "foundation/OQString.h"

struct OQDataFile
{
    OQString relative; // below the folder that was listed, with "/"
    OQString path;
};

// The two folders of one shape in which data files lie: the user's own and what is shipped. A file
// of the user's hides the shipped one of the same relative name. Relative names are written with
// "/" and trusted; both folders have "/" at their ends, and an empty one holds nothing.
struct OQDataRoots
{
    // Where the scripts lie, below either.
    static constexpr const OQChar* scripts = u"Visualizations/Vis Studio/";

    OQString user;
    OQString shipped;

    // Those of this process.
    static OQDataRoots Get();

    // The path of the first file of that name; empty if there is none.
    OQString FindFile(const OQString& relative) const;

    // One of them has such a folder.
    bool HasFolder(const OQString& relative) const;

    // The files in `folder` (empty or with "/" at its end) and below it whose names match, each
    // once, sorted by relative name. As for OQFileFinder.
    OQArray<OQDataFile> List(const OQString& folder, const OQString& pattern) const;

    // Where a file is to be saved: what is shipped stays as it is, and the user gets a file of the
    // same relative name. Any other path as it stands.
    OQString PathForSaving(const OQString& path) const;
};
