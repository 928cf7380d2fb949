#pragma once

#include "host/TrackTags.h"
#include "os/Descriptor.h"

#include <string>

namespace pxvis::host {

// A song's cover as a file that only this user can read, for those who load pictures by name: in
// $XDG_CACHE_HOME/pxvis, or the folder for temporary files where that can't be written. Gone with
// the object, or with the next one if the process was killed: each is locked as long as it is
// needed.
class CoverFile
{
public:
    explicit CoverFile(const TrackTags& tags);
    ~CoverFile();
    CoverFile(const CoverFile&) = delete;
    CoverFile& operator=(const CoverFile&) = delete;

    // Empty when the song has no cover or it could not be written.
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
    os::Descriptor m_file; // holds the lock
};

}
