#pragma once

#include "host/analysis/SampleSource.h"

#include <cstdint>

namespace pxvis::host {

// A song for trying scripts where there is none: 120 kick drums a minute, ticks between them, and
// tones that change every two seconds, on both sides. The same samples everywhere.
class ClickTrack final : public SampleSource
{
public:
    static constexpr int Seconds = 32;

    size_t Read(float* interleaved, size_t frames) override;

private:
    int64_t m_position = 0; // samples
};

}
