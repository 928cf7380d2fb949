#include "host/analysis/ImpactDetector.h"

#include <algorithm>

namespace pxvis::host {

namespace {

constexpr float RiseDecay = 0.6f; // a hop
constexpr float PeakDecay = 0.9993f; // a hop: to a half in 6 s
constexpr float MeanRate = 0.005f; // a hop: about 1 s
constexpr float PeakShare = 0.5f;
constexpr float MeanFactor = 3;
constexpr float Floor = 0.003f; // -50 dB of full scale
constexpr int DeadFrames = 14; // 80 ms: one hit is one impact

}

float ImpactDetector::Push(const OnsetFrame& frame)
{
    m_rise = m_rise * RiseDecay + frame.low;
    const float threshold = std::max({ Floor, m_peak * PeakShare, m_mean * MeanFactor });
    m_peak = std::max(m_peak * PeakDecay, m_rise);
    m_mean += (m_rise - m_mean) * MeanRate;
    ++m_framesSinceHit;
    if (m_rise > threshold && m_framesSinceHit > DeadFrames) {
        m_framesSinceHit = 0;
        return std::min(255.0f, 101 + 100 * (m_rise / threshold - 1));
    }
    return std::min(100.0f, 100 * m_rise / threshold);
}

}
