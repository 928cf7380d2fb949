#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

struct kiss_fft_state;

namespace pxvis::host {

// How much new sound starts in one hop.
struct OnsetFrame
{
    float broad = 0; // rise over the whole spectrum, in nepers summed over the bands and weighted
    float low = 0; // rise of the amplitude below 130 Hz, full scale 1
    float loudness = 0; // power of the window, a full-scale sine in both channels 1
};

// Spectral flux of the two channels together: the rise of the logarithmic band energies against the
// hop before (Bello et al., "A tutorial on onset detection in music signals", 2005), with bands
// instead of bins so that one drum is a handful of numbers. One pair of samples in, one frame a hop
// out.
class OnsetSpectrum
{
public:
    static constexpr size_t Hop = 256; // 5.8 ms
    static constexpr size_t WindowSize = 1024;
    // Samples from an attack to the end of the hop whose broad rise shows it best.
    static constexpr int AttackDelay = 340;

    OnsetSpectrum();
    ~OnsetSpectrum();
    OnsetSpectrum(const OnsetSpectrum&) = delete;
    OnsetSpectrum& operator=(const OnsetSpectrum&) = delete;

    // Takes the next Hop pairs, interleaved.
    OnsetFrame Push(const float* interleaved);

private:
    static constexpr size_t BandCount = 18;

    struct FreeState
    {
        void operator()(kiss_fft_state* state) const;
    };

    std::unique_ptr<kiss_fft_state, FreeState> m_transform;
    std::vector<float> m_window;
    std::vector<float> m_samples; // the last WindowSize pairs, interleaved
    std::vector<float> m_windowed;
    std::vector<float> m_bins; // real and imaginary parts in turns
    std::array<float, BandCount> m_previous {}; // logarithmic band energies of the hop before
    float m_previousLow = 0;
    float m_peak = 0; // energy of the loudest band of the last seconds
};

}
