#pragma once

#include "host/TrackTags.h"
#include "host/analysis/AudioRecord.h"
#include <pxvis/IVisAudioData.h>

#include <array>
#include <memory>
#include <string>

namespace pxvis::host {

// What IVisAudioData::GetValue gives of a frame's record.
int32_t AudioValue(const AudioRecord& record, int32_t frameRate, int32_t which);

// Written between frames by whoever drives the engine, on the drawing thread.
struct RecordAudioState
{
    bool ready = false; // false: no frame is drawn
    AudioRecord record;
    int32_t frameRate = 60'000; // frames a second x 1000
    VisPlayInfo playInfo { .playlistPosition = 1, .playlistLength = 1 };
    std::array<std::u16string, 11> fields; // by VisTrackField; an empty one is unknown

    // Fields and play info of a song; `coverFile` is UTF-8 and may be empty.
    void SetSong(const SongInfo& info, const std::string& coverFile);
};

// Hands the state's record to an engine, which owns this object; the state outlives it where
// needed.
class RecordAudioData final : public IVisAudioData
{
public:
    explicit RecordAudioData(std::shared_ptr<const RecordAudioState> state);

    // Keeps a copy of the state's record, so that all answers of a frame agree.
    int32_t Refresh() override;

    void Reserved() override { }

    const VisAudioBlock* GetData() override;
    int32_t GetValue(int32_t which) override;
    const void* GetPlayInfo() override;
    char16_t* GetTrackField(int32_t which) override;
    char16_t* ExpandText(const char16_t* text) override;

private:
    std::shared_ptr<const RecordAudioState> m_state;
    AudioRecord m_record;
};

}
