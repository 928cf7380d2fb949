#pragma once

#include "foundation/OQString.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// What a server sent, and how it tells whether that is still what it would send.
struct OQDownload
{
    std::string entityTag; // of the header ETag
    std::string lastModified; // of the header of that name
    std::string bytes; // plain
};

// Copies of downloads in a folder of the user's alone, a file each, which is there whole or not at
// all. The oldest go when there are too many. Any thread, any number of processes.
class OQDownloadCache
{
public:
    static constexpr size_t MostFiles = 256;
    static constexpr uint64_t MostBytes = 64 << 20;
    static constexpr size_t LargestFile = 8 << 20;

    // `folder`: absolute; made when there is something to keep. Empty: nothing is kept.
    explicit OQDownloadCache(const OQString& folder);

    // The one below the user's folder for such things.
    static OQDownloadCache OfUser();

    // `request` is all that the answer depends on, in one line. False, and an empty copy, if there
    // is none.
    bool Find(std::string_view request, OQDownload& copy) const;

    // False if there is no room for it, or if nothing tells a later version from this one.
    bool Keep(std::string_view request, const OQDownload& download) const;

private:
    std::string PathOf(std::string_view request) const;
    void RemoveOldest() const;

    std::string m_folder;
};
