#include "host/analysis/ImpactDetector.h"

#include <algorithm>
#include <cmath>

namespace pxvis::host {

namespace {

constexpr float RiseDecay = 0.8f; // a hop
constexpr float PeakDecay = 0.9993f; // a hop: to a half in 6 s
constexpr float MeanRate = 0.005f; // a hop: about 1 s
constexpr float PeakShare = 0.45f;
constexpr float MeanFactor = 3;
constexpr float Floor = 0.01f; // a bass of -45 dB behind a clear onset
constexpr float EnoughBroad = 25; // an onset out of silence has far more
constexpr float FrontShare = 0.4f; // an attack spreads over several hops and starts at the first
constexpr int DeadHops = 17; // 100 ms: one hit is one impact

}

ImpactDetector::Result ImpactDetector::Push(const OnsetFrame& frame)
{
    std::copy_backward(m_broad.begin(), m_broad.end() - 1, m_broad.end());
    m_broad[0] = frame.broad;
    m_rise = m_rise * RiseDecay + frame.low;
    auto attack = std::max_element(m_broad.begin(), m_broad.end());
    const float broad = *attack;
    while (attack + 1 != m_broad.end() && attack[1] >= FrontShare * broad)
        ++attack;
    const float strength = m_rise * std::sqrt(std::min(broad, EnoughBroad));

    const float threshold = std::max({ Floor, m_peak * PeakShare, m_mean * MeanFactor });
    m_peak = std::max(m_peak * PeakDecay, strength);
    m_mean += (strength - m_mean) * MeanRate;
    ++m_hopsSinceHit;
    Result result;
    result.level = std::min(100.0f, 100 * strength / threshold);
    if (strength > threshold && m_hopsSinceHit > DeadHops) {
        m_hopsSinceHit = 0;
        result.hit = std::min(255.0f, 101 + 50 * (strength / threshold - 1));
        result.hitHopsAgo = static_cast<size_t>(attack - m_broad.begin());
    }
    return result;
}

}
