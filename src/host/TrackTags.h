#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pxvis::host {

// What a file says about its song, as far as it says it. Texts are UTF-8.
struct TrackTags
{
    // Longer texts are cut, larger pictures left out.
    static constexpr size_t TextLimit = size_t { 1 } << 20;
    static constexpr size_t CoverLimit = size_t { 64 } << 20;

    std::string artist;
    std::string album;
    std::string title;
    std::string year;
    std::string genre;
    int trackNumber = 0; // of the album; 0: unknown
    std::string notes;
    std::string lyrics;

    std::vector<unsigned char> cover; // an image file's bytes, whatever the song's file holds
    std::string coverType; // its media type, "image/jpeg"

    bool operator==(const TrackTags&) const = default;
};

// What is known of a song once its decoding has begun. 0 is unknown.
struct SongInfo
{
    TrackTags tags;
    double durationSeconds = 0; // an estimate for formats without an index
    int channels = 0;
    int sampleRate = 0;
    int bitRate = 0; // bits a second
};

}
