#pragma once

#include "host/EncodeSettings.h"

#include <gst/gst.h>

namespace pxvis::host {

// What GStreamer needs to encode pictures for a kind of file.
struct PictureCoding
{
    const char* encoder; // factory
    const char* package; // Debian's, that holds the factory
    const char* caps; // of the encoded stream
};

PictureCoding PictureCodingOf(VideoContainer container);

// Quality, look-ahead, distance of key pictures and threads of a new encoder of that kind.
void SetUpPictureEncoder(GstElement* encoder, const EncodeSettings& settings);

}
