#include "host/analysis/SpectrumAnalysis.h"

#include "kernels/Maths.h"

#include <kiss_fftr.h>

#include <algorithm>
#include <new>
#include <numbers>

namespace pxvis::host {

void SpectrumAnalysis::FreeState::operator()(kiss_fftr_state* state) const
{
    kiss_fftr_free(state);
}

SpectrumAnalysis::SpectrumAnalysis()
    : m_transform(kiss_fftr_alloc(WindowSize, 0, nullptr, nullptr))
    , m_window(WindowSize)
    , m_windowed(WindowSize)
    , m_bins(WindowSize + 2)
{
    if (!m_transform)
        throw std::bad_alloc();
    for (size_t i = 0; i < WindowSize; ++i) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(i) / WindowSize;
        m_window[i] = static_cast<float>(0.5 - 0.5 * maths::Cos(angle));
    }
    // The window's sum is half its length and a sine shares its amplitude between two mirrored
    // bins.
    const double fullScale = WindowSize / 4.0;
    for (size_t v = 0; v < m_powerOfByte.size(); ++v) {
        const double decibels = -72 + 72 * (static_cast<double>(v) + 0.5) / 255;
        m_powerOfByte[v]
            = static_cast<float>(maths::Pow(10.0, decibels / 10) * fullScale * fullScale);
    }
}

SpectrumAnalysis::~SpectrumAnalysis() = default;

void SpectrumAnalysis::Analyze(const float* samples, uint8_t* bands)
{
    for (size_t i = 0; i < WindowSize; ++i)
        m_windowed[i] = samples[i] * m_window[i];
    static_assert(sizeof(kiss_fft_cpx) == 2 * sizeof(float));
    kiss_fftr(m_transform.get(), m_windowed.data(), reinterpret_cast<kiss_fft_cpx*>(m_bins.data()));
    for (size_t band = 0; band < BandCount; ++band) {
        const float* bin = &m_bins[band * 4];
        const float power
            = (bin[0] * bin[0] + bin[1] * bin[1]) + (bin[2] * bin[2] + bin[3] * bin[3]);
        const auto above = std::upper_bound(m_powerOfByte.begin(), m_powerOfByte.end(), power);
        bands[band] = static_cast<uint8_t>(above - m_powerOfByte.begin());
    }
}

}
