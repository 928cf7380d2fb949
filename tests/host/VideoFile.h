#pragma once

#include "host/GStreamer.h"

#include <cstdint>
#include <string>
#include <vector>

// A video file taken apart by GStreamer's demuxer and decoders.
struct VideoFile
{
    struct Picture
    {
        uint64_t begin = 0; // ns
        std::vector<unsigned char> y, cb, cr; // rows without padding
    };

    std::string fault;
    std::string format; // the decoded pictures' caps
    int width = 0;
    int height = 0;
    std::vector<Picture> pictures;
    std::vector<float> sound; // the left channel
    int soundRate = 0;
    uint64_t soundBegin = 0; // ns
    pxvis::host::GstHolder<GstTagList> tags;

    explicit VideoFile(const std::string& path);
};
