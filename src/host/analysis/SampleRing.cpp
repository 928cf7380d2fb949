#include "host/analysis/SampleRing.h"

#include "host/analysis/SampleSource.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace pxvis::host {

namespace {

constexpr int64_t Second = 1'000'000'000;
constexpr int64_t BreakTime = 40'000'000; // ns; what lies below is a clock that drifts or trembles
constexpr int64_t Smoothing = 8;
constexpr float Audible = 1e-4f;

// Times a streaming thread could make up would overflow; a century is enough for everybody.
int64_t Bounded(int64_t time)
{
    constexpr int64_t furthest = int64_t { 100 } * 366 * 86400 * Second;
    return std::clamp(time, -furthest, furthest);
}

}

SampleRing::SampleRing(size_t frames)
    : m_samples(2 * frames)
    , m_capacity(static_cast<int64_t>(frames))
{
}

// Split, since a century of nanoseconds times the sample rate is past 64 bits.
int64_t SampleRing::TimeAt(int64_t position) const
{
    const int64_t pairs = position - m_anchorPosition;
    return m_anchorTime + pairs / SampleRate * Second + pairs % SampleRate * Second / SampleRate;
}

int64_t SampleRing::PositionAt(int64_t time) const
{
    const int64_t ns = Bounded(time) - m_anchorTime;
    return m_anchorPosition + ns / Second * SampleRate + ns % Second * SampleRate / Second;
}

void SampleRing::Break()
{
    // Whoever reads somewhere near the old end is left behind for certain.
    m_end += m_capacity;
    m_first = m_end;
    m_soundEnd = m_end;
}

void SampleRing::Push(const float* interleaved, size_t frames, int64_t time)
{
    const int64_t due = TimeAt(m_end);
    const int64_t late = Bounded(time) - due;
    const bool follows = m_first < m_end && std::abs(late) <= BreakTime;
    if (!follows && m_first < m_end)
        Break();
    m_anchorPosition = m_end;
    m_anchorTime = follows ? due + late / Smoothing : Bounded(time);

    const auto count = static_cast<int64_t>(frames);
    for (int64_t i = std::max<int64_t>(0, count - m_capacity); i < count; ++i) {
        const float left = interleaved[2 * i];
        const float right = interleaved[2 * i + 1];
        const auto slot = static_cast<size_t>((m_end + i) % m_capacity);
        m_samples[2 * slot] = left;
        m_samples[2 * slot + 1] = right;
        if (std::abs(left) > Audible || std::abs(right) > Audible)
            m_soundEnd = m_end + i + 1;
    }
    m_end += count;
    m_first = std::max(m_first, m_end - m_capacity);
}

void SampleRing::Copy(int64_t position, float* interleaved, size_t frames) const
{
    for (size_t i = 0; i < frames; ++i, ++position) {
        const bool isThere = position >= m_first && position < m_end;
        const auto slot = isThere ? static_cast<size_t>(position % m_capacity) : 0;
        interleaved[2 * i] = isThere ? m_samples[2 * slot] : 0.0f;
        interleaved[2 * i + 1] = isThere ? m_samples[2 * slot + 1] : 0.0f;
    }
}

}
