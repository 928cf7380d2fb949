#pragma once

#include <gst/gst.h>

#include <string>
#include <vector>

// Writes a song through GStreamer: interleaved stereo at 44.1 kHz through "encoder ! muxer" to the
// file. False, with the reason, if that failed.
bool WriteSongFile(const std::string& path, const std::vector<float>& interleaved,
    const std::string& encoder, const GstTagList* tags, std::string& error);
