#pragma once

#include "apps/player/display/VisualHost.h"
#include "host/CoverFile.h"
#include "host/analysis/AudioRecord.h"

#include <pxvis/IVisAudioData.h>

#include <cstdint>
#include <memory>

namespace pxvis::player {

// What the host's objects tell the visualizations, and own together: they live as long as the
// library likes. User-interface thread, so that nothing changes within a frame.
class HostState
{
public:
    void SetSound(HeardSound* sound) { m_sound = sound; }

    void SetTrack(const HostTrack& track);
    void SetElapsed(double seconds);

    void SetResting(bool resting);
    void DrawAwhile();

    // The record of a new frame. False if there is to be none; `record` is as it was.
    bool TakeFrame(host::AudioRecord& record);

    const HostTrack& Track() const { return m_track; }

    const VisPlayInfo& PlayInfo() const { return m_playInfo; }

    QString CoverFile() const;
    const HostPicture* CoverPicture() const; // null without one

    int TrackNumber() const { return m_trackNumber; } // another one: another track

    int PictureNumber() const { return m_pictureNumber; } // the same of the cover

    int32_t FrameRate() const { return m_frameRate; } // frames a second x 1000

    int Level() const { return m_level; }

    bool TakeBeat();

private:
    void CountFrame();

    HeardSound* m_sound = nullptr; // not owned
    bool m_isResting = false;
    int64_t m_drawUntil = 0; // ns of the monotonic clock
    host::AudioRecord m_record; // the last one that was heard
    int m_level = 0;
    bool m_hadBeat = false;

    HostTrack m_track;
    VisPlayInfo m_playInfo;
    std::unique_ptr<host::CoverFile> m_cover;
    HostPicture m_picture {};
    int m_trackNumber = 0;
    int m_pictureNumber = 0;

    int32_t m_frameRate = 60'000;
    int64_t m_countedSince = 0; // ns
    int m_counted = 0; // frames
};

}
