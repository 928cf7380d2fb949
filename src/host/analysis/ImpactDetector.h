#pragma once

#include "host/analysis/OnsetSpectrum.h"

#include <array>
#include <cstddef>

namespace pxvis::host {

// Tells the strong hits, kick drums first, from everything else: a rise of the bass that comes with
// an onset over the whole spectrum. A kick's bass arrives up to 30 ms behind its attack, so a hit
// is known late and dated back.
class ImpactDetector
{
public:
    struct Result
    {
        float level = 0; // 0 to 100: how near this hop comes to a hit
        float hit = 0; // 101 to 255 when a hit was found
        size_t hitHopsAgo = 0; // where its attack is
    };

    // Takes the next hop.
    Result Push(const OnsetFrame& frame);

private:
    static constexpr size_t AttackHops = 9; // 52 ms

    std::array<float, AttackHops> m_broad {}; // of the last hops, the newest first
    float m_rise = 0; // of the bass over the last few hops
    float m_peak = 0; // of the strengths of the last seconds
    float m_mean = 0;
    int m_hopsSinceHit = 1000;
};

}
