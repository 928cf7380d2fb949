#pragma once

#include "host/GStreamer.h"

#include <cstdint>
#include <string>

// A video file taken apart and decoded by GStreamer, the pictures first and the sound then; what
// comes early of the other waits as it is encoded.
class VideoPipeline
{
public:
    using Sample = pxvis::host::GstHolder<GstSample>;

    explicit VideoPipeline(const std::string& path);
    ~VideoPipeline();
    VideoPipeline(const VideoPipeline&) = delete;
    VideoPipeline& operator=(const VideoPipeline&) = delete;

    // Null at the end.
    Sample NextPicture() const { return Next("pictures"); }

    // Floating point numbers, a frame's channels side by side.
    Sample NextSound() const { return Next("sound"); }

    // In nanoseconds of the video.
    static uint64_t TimeOf(GstSample* sample);

    // What has gone wrong so far; the tags that have come are added.
    std::string Fault(GstTagList* tags = nullptr);

private:
    Sample Next(const char* sink) const;

    pxvis::host::GstHolder<GstElement> m_pipeline; // null: see m_fault
    std::string m_fault;
};
