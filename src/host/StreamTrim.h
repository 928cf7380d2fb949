#pragma once

#include "host/analysis/Mp3Trim.h"

#include <gst/gst.h>

namespace pxvis::host {

// Where a stream's song starts and ends, as far as GStreamer leaves that to us. Written by
// GStreamer's threads before the first sample is decoded, to be read once that is there.
struct StreamTrim
{
    bool inContainer = false; // then the container tells
    bool lengthIsGuessed = false; // from the bit rate of the first frames, without a container
    Mp3Trim mp3;
};

// Looks into the mp3 parser that a pipeline may come to hold; `trim` outlives the pipeline.
void WatchForMp3(GstElement* pipeline, StreamTrim& trim);

}
