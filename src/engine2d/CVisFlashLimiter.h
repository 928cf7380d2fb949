#pragma once

#include "engine2d/CVisFlashMeter.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// Sits behind what draws pictures and keeps what is shown within the limit of a CVisFlashMeter: a
// meter that gets the same pictures as the eyes never finds it exceeded.
//
// Pictures pass untouched as long as they keep the limit. One that would exceed it is mixed with
// the picture shown before, in linear light, by just as much as is needed. From there on pictures
// are mixed less and less, within a second, and pass untouched again at its end, so that a strobe
// becomes a calm mean of its pictures and a steady picture is reached smoothly.
//
// Ordinarily costs no more than the meter. Keeps two pictures while it mixes. One thread at a time.
class CVisFlashLimiter
{
public:
    // True if the picture, to be shown from `time` (ns) on, must not be shown as it is: then
    // CopyDamped has the one that may be. A change of size lets the first picture pass.
    bool IsDamped(const CVisPixels& picture, int64_t time);

    // Writes the picture that is to be shown instead, of the same size; the target may be the
    // picture's own pixels. Only right after IsDamped gave true.
    void CopyDamped(uint32_t* topRow, ptrdiff_t stride) const;

private:
    using Cells = std::vector<CVisFlashCell>;

    bool Keeps(const Cells& cells, int64_t time);
    int32_t LargestWeight(int32_t most, int64_t time);
    bool Mix(const CVisPixels& picture, int32_t weight, int64_t time);
    void Remember(const CVisPixels& picture);
    CVisPixels Own(const std::vector<uint32_t>& pixels) const;

    CVisFlashMeter m_meter; // of what is shown
    CVisFlashMeter m_trial; // the same, one picture on
    int32_t m_width = 0;
    int32_t m_height = 0;
    int64_t m_time = INT64_MIN;
    int64_t m_recovered = CVisFlashMeter::second; // ns since a picture was all held back
    bool m_remembers = false; // m_shown holds what was shown last
    std::vector<uint32_t> m_shown; // top row first
    std::vector<uint32_t> m_mixed;
    std::vector<uint8_t> m_table; // of m_tableWeight
    int32_t m_tableWeight = -1;
    Cells m_cells; // the picture's
    Cells m_shownCells;
    Cells m_mixedCells;
};
