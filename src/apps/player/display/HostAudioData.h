#pragma once

#include "host/analysis/AudioRecord.h"

#include <pxvis/IVisAudioData.h>

#include <memory>

namespace pxvis::player {

class HostState;

// What the 2D engine hears and shows of the track; the engine owns it.
class HostAudioData final : public IVisAudioData
{
public:
    explicit HostAudioData(std::shared_ptr<HostState> state);
    ~HostAudioData() override;

    int32_t Refresh() override;
    void Reserved() override;
    const VisAudioBlock* GetData() override;
    int32_t GetValue(int32_t which) override;
    const void* GetPlayInfo() override;
    char16_t* GetTrackField(int32_t which) override;
    char16_t* ExpandText(const char16_t* text) override;

private:
    std::shared_ptr<HostState> m_state;
    host::AudioRecord m_record; // of this frame
    int m_pictureNumber; // that the frame shows
};

}
