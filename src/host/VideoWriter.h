#pragma once

#include "host/EncodeSettings.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace pxvis::host {

// Encodes pictures and sound to an MP4 file, H.264 with BT.709 colours and the index in front, or
// to a WebM file, VP9 with Opus. Picture k is shown from k * denominator / numerator seconds on, in
// a WebM file rounded to milliseconds; the sound starts with the first picture. The file has its
// name only after Finish(). For one thread at a time; encodes on threads of its own.
//
// The caller feeds both in step, the sound ahead of the picture that is shown with it: what one
// stream runs ahead of the other is kept in memory, encoded.
class VideoWriter
{
public:
    static constexpr int SampleRate = 44100;

    // An encoder that takes nothing for this long counts as stuck.
    static constexpr int StallSeconds = 120;

    // Null, and one line, when the settings are out of range, a plug-in is missing or the file
    // can't be made.
    static std::unique_ptr<VideoWriter> Open(
        const std::string& path, const EncodeSettings& settings, std::string& error);

    // Removes what was not finished.
    ~VideoWriter();
    VideoWriter(const VideoWriter&) = delete;
    VideoWriter& operator=(const VideoWriter&) = delete;

    // Left and right, interleaved, -1 to 1. Never waits. With SoundCoding::Copy only the length
    // counts: it says where the copy ends.
    bool AddSound(const float* interleaved, size_t frames);

    // Pixels are 0xAARRGGBB, A is ignored. topRow is the picture's highest row, pitch the number of
    // pixels from a row to the one below it, negative for pictures kept bottom row first. Copies
    // the picture; waits while the encoder is behind.
    bool AddPicture(const uint32_t* topRow, ptrdiff_t pitch);

    // Waits until everything is encoded and the file has its name.
    bool Finish();

    // Nothing may be added or finished afterwards.
    void Abort();

    uint64_t PictureCount() const;

    // The file that grows until Finish() gives it its name.
    const std::string& UnfinishedPath() const;

    // One line that starts with the path; the first failure since the opening.
    const std::string& Error() const;

private:
    struct Pipeline;

    explicit VideoWriter(std::unique_ptr<Pipeline> pipeline);

    std::unique_ptr<Pipeline> m_pipeline;
};

}
