#pragma once

#include "host/analysis/AudioRecord.h"

#include <pxvis/IOQVisualizationHost.h>

#include <memory>

namespace pxvis::player {

class HostState;

// A visualization's line to the player; the visualization owns it.
class HostConnection final : public IOQHostConnection
{
public:
    explicit HostConnection(std::shared_ptr<HostState> state);
    ~HostConnection() override;

    void Refresh() override;
    const int8_t* GetWaveform() override;
    const uint8_t* GetSpectrum() override;
    char16_t* GetProperty(const char16_t* name) override;
    const void* GetCoverImage() override;

private:
    std::shared_ptr<HostState> m_state;
    host::AudioRecord m_record; // of this frame
};

}
