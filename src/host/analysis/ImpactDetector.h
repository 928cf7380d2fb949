#pragma once

#include "host/analysis/OnsetSpectrum.h"

namespace pxvis::host {

// Tells the strong hits, kick drums first, from everything else. Causal: the answer depends on
// nothing behind the frame.
class ImpactDetector
{
public:
    // 0 to 255: 101 or more in the one frame in which a hit is found, by its strength; else the
    // share of the threshold that the rise reaches, up to 100.
    float Push(const OnsetFrame& frame);

private:
    float m_rise = 0; // of the last few hops together, since a kick takes 20 ms to rise
    float m_peak = 0; // of the hits of the last seconds
    float m_mean = 0;
    int m_framesSinceHit = 1000;
};

}
