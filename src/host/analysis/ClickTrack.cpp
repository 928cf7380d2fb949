#include "host/analysis/ClickTrack.h"

#include "kernels/Maths.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace pxvis::host {

namespace {

constexpr double twoPi = 6.283185307179586;

// Falls from 180 to 50 Hz.
double Kick(double t)
{
    const double phase = 50 * t + 130 / 30.0 * (1 - maths::Exp(-30 * t));
    return maths::Exp(-9 * t) * maths::Sin(twoPi * phase);
}

double Tick(double t)
{
    return maths::Exp(-60 * t) * (maths::Sin(twoPi * 4700 * t) + maths::Sin(twoPi * 7900 * t));
}

}

size_t ClickTrack::Read(float* interleaved, size_t frames)
{
    constexpr int64_t end = int64_t { Seconds } * SampleRate;
    constexpr double roots[] = { 220, 277.18, 329.63, 246.94 };
    const size_t count = std::min(frames, static_cast<size_t>(end - m_position));
    for (size_t i = 0; i < count; ++i, ++m_position) {
        const double t = static_cast<double>(m_position) / SampleRate;
        const double beats = 2 * t;
        const double drums = 0.5 * Kick((beats - std::floor(beats)) / 2)
            + 0.08 * Tick((4 * t - std::floor(4 * t)) / 4);
        const double root = roots[static_cast<size_t>(t / 2) % std::size(roots)];
        *interleaved++ = static_cast<float>(drums + 0.12 * maths::Sin(twoPi * root * t));
        *interleaved++ = static_cast<float>(drums + 0.12 * maths::Sin(twoPi * 1.5 * root * t));
    }
    return count;
}

}
