#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

struct kiss_fftr_state;

namespace pxvis::host {

// The spectrum of one channel as the bytes of a VisAudioBlock. Not for two threads at once.
class SpectrumAnalysis
{
public:
    static constexpr size_t WindowSize = 2048;
    static constexpr size_t BandCount = 512;

    SpectrumAnalysis();
    ~SpectrumAnalysis();
    SpectrumAnalysis(const SpectrumAnalysis&) = delete;
    SpectrumAnalysis& operator=(const SpectrumAnalysis&) = delete;

    // Takes WindowSize samples, the newest last, under a Hann window. Band b is the power of bins
    // 2b and 2b+1 together (43 Hz, so that a tone between two bins is not lost), where a full-scale
    // sine on a bin has power 1; -72 to 0 dB of that make 0 to 255, rounded.
    void Analyze(const float* samples, uint8_t* bands);

private:
    struct FreeState
    {
        void operator()(kiss_fftr_state* state) const;
    };

    std::unique_ptr<kiss_fftr_state, FreeState> m_transform;
    std::vector<float> m_window;
    std::vector<float> m_windowed;
    std::vector<float> m_bins; // real and imaginary parts in turns
    std::array<float, 255> m_powerOfByte; // [v]: the smallest power of byte v + 1
};

}
