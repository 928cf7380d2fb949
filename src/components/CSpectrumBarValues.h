#pragma once

#include <cstdint>

struct VisAudioBlock;

// Walks the spectrum once a frame: a power law gives each bar its bins, the highs are lifted, and
// the result is bent to a height. Arithmetic in double precision.
class CSpectrumBarValues
{
public:
    struct Settings
    {
        int32_t channels = 0; // 0 the mean of both, 1 left, 2 right
        int32_t fftElements = 512; // bins in use
        int32_t frequencyScale = 5; // exponent of the bar-to-bin mapping
        int32_t topWeight = 5; // exponent of the lift
        int32_t upScale = 80; // exponent of the height, in hundredths
    };

    CSpectrumBarValues(const VisAudioBlock& block, const Settings& settings, int32_t barCount);

    // The height of the next bar, 0 to 996 thousandths of the display's height.
    int32_t Next();

private:
    int32_t Bin(int64_t index) const;
    int64_t SumBins(int64_t first, int64_t last) const;

    const VisAudioBlock& m_block;
    const Settings& m_settings;
    int32_t m_barCount;
    int32_t m_bar = 0;
    int64_t m_lastBin = 0; // of the bar before; the next bar shares it
};
