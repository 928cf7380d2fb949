#pragma once

#include "host/TrackTags.h"

#include <cstdint>
#include <string>

namespace pxvis::host {

enum class EncodeLevel
{
    Draft, // as quick as can be, large files
    Good,
    Best // several times slower than Good
};

enum class VideoContainer
{
    Mp4, // H.264 with AAC, Opus or a copied stream
    WebM // VP9 with Opus
};

enum class SoundCoding
{
    Aac, // 256 kbit/s
    Opus, // 192 kbit/s
    Copy // the song's own encoded stream
};

// How a video is made. Sizes and rates out of range are refused when the video is opened.
struct EncodeSettings
{
    static constexpr int SideLeast = 16; // the encoder takes no less
    static constexpr int SideLimit = 16384;
    static constexpr int64_t PixelLimit = int64_t { 64 } << 20;

    int width = 1920; // even
    int height = 1080; // even
    int rateNumerator = 60; // pictures a second; 1/60 to 1000 are taken
    int rateDenominator = 1;
    VideoContainer container = VideoContainer::Mp4;
    EncodeLevel level = EncodeLevel::Good;
    int threads = 0; // of the picture encoder; 0: as many as suit the machine
    SoundCoding sound = SoundCoding::Aac;
    std::string songPath; // what SoundCoding::Copy copies from
    double songStart = 0; // seconds into the song where the copy begins
    bool replace = false; // an existing file is otherwise an error

    // Title, artist, album, year and cover are stored in the file where it has a place for them.
    TrackTags tags;
};

}
