#pragma once

#include <cstdint>
#include <string>

namespace pxvis::host {

// What a player must know to show sound and pictures at the right time.
struct Mp4SoundTiming
{
    uint32_t rate = 0; // the encoded sound's samples a second
    uint64_t length = 0; // samples a channel that are to be heard
    uint32_t skip = 0; // samples that the decoder gives before the first of them
    bool opus = false; // the encoder's skip is kept in the stream's description as well
};

// Writes the timing into the index of a finished MP4 file with one sound track, in place. The muxer
// lets a coded stream's first sample be heard at 0, though encoders put a run-up before the sound,
// and the last block's filling at the end; an edit list of the track cuts both off
// (ISO/IEC 14496-12, 8.6.6). False with a reason when the index is not as expected.
bool WriteMp4SoundTiming(int descriptor, const Mp4SoundTiming& timing, std::string& error);

}
