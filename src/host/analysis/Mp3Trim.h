#pragma once

#include <cstddef>
#include <cstdint>

namespace pxvis::host {

// What surrounds the song in an MPEG audio layer III stream: an encoder starts late by its own
// delay and the decoder's filter bank adds to that, and the last frame is filled up.
struct Mp3Trim
{
    bool isLayer3 = false;
    bool isHeaderFrame = false; // the frame describes the stream and holds no sound
    int start = 0; // decoded samples in front of the song
    int64_t length = -1; // samples of the song; -1: to the end
};

// Judges a stream by its first whole frame. Without a delay in the frame's "Xing" or "Info" header
// the usual delay of encoders is assumed.
Mp3Trim ReadMp3Trim(const unsigned char* frame, size_t size);

}
