#include "components/CSpectrumBarValues.h"

#include "foundation/OQTruncate.h"
#include "kernels/Maths.h"

#include <algorithm>
#include <pxvis/IVisAudioData.h>

namespace {

constexpr int64_t lastBinOfAll = 511;

}

CSpectrumBarValues::CSpectrumBarValues(
    const VisAudioBlock& block, const Settings& settings, int32_t barCount)
    : m_block(block)
    , m_settings(settings)
    , m_barCount(barCount)
{
}

int32_t CSpectrumBarValues::Bin(int64_t index) const
{
    const size_t bin = static_cast<size_t>(std::clamp<int64_t>(index, 0, lastBinOfAll));
    const int32_t left = m_block.spectrum[0][bin];
    const int32_t right = m_block.spectrum[1][bin];
    switch (m_settings.channels) {
    case 1:
        return left;
    case 2:
        return right;
    default:
        return (left + right) / 2;
    }
}

// Past the end the last bin counts again, however many there are.
int64_t CSpectrumBarValues::SumBins(int64_t first, int64_t last) const
{
    int64_t sum = 0;
    for (int64_t bin = first; bin <= std::min(last, lastBinOfAll); ++bin)
        sum += Bin(bin);
    const int64_t beyond = last - std::max(first - 1, lastBinOfAll);
    return beyond > 0 ? sum + beyond * Bin(lastBinOfAll) : sum;
}

int32_t CSpectrumBarValues::Next()
{
    using pxvis::maths::Pow;
    const double f = static_cast<double>(m_bar++) / static_cast<double>(m_barCount);
    const double position = Pow(f, m_settings.frequencyScale) * m_settings.fftElements;
    const int64_t end = std::min<int64_t>(
        std::max<int64_t>(OQTruncateToInt32(position), m_lastBin + 1), m_settings.fftElements);

    // One more than the number of bins summed.
    int64_t divisor = 1;
    int64_t sum = 0;
    if (m_lastBin <= end) {
        divisor = end - m_lastBin + 2;
        sum = SumBins(m_lastBin, end);
    }
    const double average = static_cast<double>(sum / divisor);
    m_lastBin = end;

    const double lift = Pow((f - 0.1) * 0.25 + 1.0, m_settings.topWeight);
    const int32_t lifted = OQTruncateToInt32(lift * average);
    const double bent = Pow(lifted / 255.0, m_settings.upScale / 100.0) * 255.0;
    return std::clamp(OQTruncateToInt32(bent), 0, 255) * 1000 / 256;
}
