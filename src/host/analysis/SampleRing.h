#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pxvis::host {

// The newest stretch of a stream of sample pairs, and when each of them is heard. Pairs have
// positions that only grow, also over a break, so that a reader notices that what it knew is gone.
// Holds no lock.
class SampleRing
{
public:
    explicit SampleRing(size_t frames);

    // Appends pairs, the first of which is heard at `time` in ns. A time that does not follow what
    // is there, within what clocks of devices drift apart, is a break: all earlier pairs are gone.
    void Push(const float* interleaved, size_t frames, int64_t time);
    void Break();

    int64_t First() const { return m_first; }

    int64_t End() const { return m_end; } // behind the newest pair

    // Of the newest pair above -80 dBFS, or the last break: what follows it is silence.
    int64_t SoundEnd() const { return m_soundEnd; }

    // The position that is heard at `time`, which may lie outside of what is there.
    int64_t PositionAt(int64_t time) const;

    // Pairs that are not there are silent.
    void Copy(int64_t position, float* interleaved, size_t frames) const;

private:
    int64_t TimeAt(int64_t position) const;

    std::vector<float> m_samples; // position modulo its size
    int64_t m_capacity;
    int64_t m_first = 0;
    int64_t m_end = 0;
    int64_t m_soundEnd = 0;

    // A pair whose time is known; the others follow at the sample rate.
    int64_t m_anchorPosition = 0;
    int64_t m_anchorTime = 0;
};

}
