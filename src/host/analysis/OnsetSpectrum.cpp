#include "host/analysis/OnsetSpectrum.h"

#include "kernels/Maths.h"

#include <kiss_fft.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>

namespace pxvis::host {

namespace {

// First bins of the bands, 43 Hz a bin, about three bands an octave above 200 Hz; DC is left out.
constexpr std::array<size_t, 19> BandEdges
    = { 1, 2, 3, 4, 6, 8, 11, 15, 20, 27, 36, 48, 64, 86, 115, 153, 204, 272, 362 };

// The drums that carry the beat lie low.
constexpr float LowWeight = 2;
constexpr size_t LowBands = 3; // up to 150 Hz

constexpr float PeakDecay = 0.9994f; // a hop; 10 s to a half in amplitude
constexpr float RelativeFloor = 1e-4f; // of the loudest band: fainter rises are not heard
constexpr float AbsoluteFloor = 1e-8f; // -80 dB of full scale: noise of a silent record

}

void OnsetSpectrum::FreeState::operator()(kiss_fft_state* state) const
{
    kiss_fft_free(state);
}

OnsetSpectrum::OnsetSpectrum()
    : m_transform(kiss_fft_alloc(WindowSize, 0, nullptr, nullptr))
    , m_window(WindowSize)
    , m_samples(2 * WindowSize)
    , m_windowed(2 * WindowSize)
    , m_bins(2 * WindowSize)
{
    if (!m_transform)
        throw std::bad_alloc();
    for (size_t i = 0; i < WindowSize; ++i) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(i) / WindowSize;
        // Scaled so that a full-scale sine has amplitude 1.
        m_window[i] = static_cast<float>((0.5 - 0.5 * maths::Cos(angle)) * 4 / WindowSize);
    }
}

OnsetSpectrum::~OnsetSpectrum() = default;

OnsetFrame OnsetSpectrum::Push(const float* interleaved)
{
    std::copy(m_samples.begin() + 2 * Hop, m_samples.end(), m_samples.begin());
    std::copy(interleaved, interleaved + 2 * Hop, m_samples.end() - 2 * Hop);
    for (size_t i = 0; i < WindowSize; ++i) {
        m_windowed[2 * i] = m_samples[2 * i] * m_window[i];
        m_windowed[2 * i + 1] = m_samples[2 * i + 1] * m_window[i];
    }
    // Left as the real and right as the imaginary part: |Z(k)|^2 + |Z(-k)|^2 is twice the sum of
    // the channels' powers, so channels of opposite sign do not cancel as they would in a mono mix.
    static_assert(sizeof(kiss_fft_cpx) == 2 * sizeof(float));
    kiss_fft(m_transform.get(), reinterpret_cast<const kiss_fft_cpx*>(m_windowed.data()),
        reinterpret_cast<kiss_fft_cpx*>(m_bins.data()));
    const auto power = [this](size_t k) {
        const float* a = &m_bins[2 * k];
        const float* b = &m_bins[2 * (WindowSize - k)];
        return ((a[0] * a[0] + a[1] * a[1]) + (b[0] * b[0] + b[1] * b[1])) * 0.25f;
    };

    OnsetFrame frame;
    std::array<float, BandCount> energy {};
    for (size_t band = 0; band < BandCount; ++band) {
        for (size_t k = BandEdges[band]; k < BandEdges[band + 1]; ++k)
            energy[band] += power(k);
        frame.loudness += energy[band];
    }
    m_peak = std::max(m_peak * PeakDecay, *std::max_element(energy.begin(), energy.end()));

    const float floor = AbsoluteFloor + m_peak * RelativeFloor;
    for (size_t band = 0; band < BandCount; ++band) {
        const auto level = static_cast<float>(maths::Log(energy[band] + floor));
        const float rise = std::max(0.0f, level - m_previous[band]);
        frame.broad += rise * (band < LowBands ? LowWeight : 1.0f);
        m_previous[band] = level;
    }

    float low = 0;
    for (size_t band = 0; band < LowBands; ++band)
        low += energy[band];
    low = std::sqrt(low);
    frame.low = std::max(0.0f, low - m_previousLow);
    m_previousLow = low;
    return frame;
}

}
