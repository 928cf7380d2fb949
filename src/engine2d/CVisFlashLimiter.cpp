#include "engine2d/CVisFlashLimiter.h"

#include "foundation/OQParallelRows.h"
#include "kernels/CopyRect.h"
#include "kernels/LinearLight.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int32_t fullWeight = 256; // of the picture against the one shown before
constexpr int64_t recovery = CVisFlashMeter::second;

}

bool CVisFlashLimiter::IsDamped(const CVisPixels& picture, int64_t time)
{
    if (picture.width != m_width || picture.height != m_height) {
        m_width = picture.width;
        m_height = picture.height;
        m_remembers = false;
    }
    const int64_t passed = m_time == INT64_MIN ? recovery : std::max<int64_t>(time - m_time, 0);
    m_time = std::max(m_time, time);
    m_recovered = std::min(m_recovered + std::min(passed, recovery), recovery);
    m_meter.Measure(m_cells, picture);
    // Without a picture to hold on to there was room for one transition more.
    const bool isFree = !m_remembers || m_recovered == recovery;
    if (isFree && (Keeps(m_cells, m_time) || !m_remembers)) {
        std::swap(m_meter, m_trial);
        std::swap(m_shownCells, m_cells);
        m_recovered = recovery;
        m_remembers = m_meter.IsAtLimit();
        if (m_remembers)
            Remember(picture);
        return false;
    }

    // What is estimated from the cells is measured again, as bytes are rounded.
    int32_t weight
        = LargestWeight(static_cast<int32_t>(m_recovered * fullWeight / recovery), m_time);
    while (!Mix(picture, weight, m_time))
        weight = weight * 3 / 4;
    m_recovered = std::min(m_recovered, weight * recovery / fullWeight);
    std::swap(m_meter, m_trial);
    std::swap(m_shownCells, m_mixedCells);
    std::swap(m_shown, m_mixed);
    return true;
}

void CVisFlashLimiter::CopyDamped(uint32_t* topRow, ptrdiff_t stride) const
{
    pxvis::kernels::CopyRect(topRow, stride, m_shown.data(), m_width, m_width, m_height);
}

// m_trial is then what the meter becomes.
bool CVisFlashLimiter::Keeps(const Cells& cells, int64_t time)
{
    m_trial = m_meter;
    m_trial.AddMeasured(cells, time);
    return !m_trial.IsExceeded();
}

// The largest weight of the picture, up to `most`, with which the limit seems to be kept.
int32_t CVisFlashLimiter::LargestWeight(int32_t most, int64_t time)
{
    const auto keeps = [&](int32_t weight) {
        const auto mix = [&](int32_t from, int32_t to) {
            const int64_t difference = int64_t { to } - from;
            return from + static_cast<int32_t>(difference * weight / fullWeight);
        };
        m_mixedCells.resize(m_cells.size());
        for (size_t i = 0; i < m_cells.size(); ++i) {
            const CVisFlashCell& from = m_shownCells[i];
            const CVisFlashCell& to = m_cells[i];
            m_mixedCells[i]
                = { mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue) };
        }
        return Keeps(m_mixedCells, time);
    };
    if (keeps(most))
        return most;
    int32_t good = 0; // nothing changes, so that no cell makes a transition
    int32_t bad = most;
    while (bad - good > 1) {
        const int32_t middle = (good + bad) / 2;
        (keeps(middle) ? good : bad) = middle;
    }
    return good;
}

// Puts the mixture into m_mixed and tells whether it keeps the limit, as it does at the weight 0.
bool CVisFlashLimiter::Mix(const CVisPixels& picture, int32_t weight, int64_t time)
{
    if (weight != m_tableWeight) {
        m_table.resize(size_t { 256 } * 256);
        pxvis::kernels::FillMixTable(m_table.data(), weight);
        m_tableWeight = weight;
    }
    m_mixed.resize(m_shown.size());
    const auto width = static_cast<size_t>(m_width);
    OQParallelRows(0, m_height, m_width, [&](int32_t top, int32_t bottom) {
        for (int32_t y = top; y < bottom; ++y) {
            const size_t row = static_cast<size_t>(y) * width;
            pxvis::kernels::MixLinearLight(
                &m_mixed[row], &m_shown[row], picture.Row(y), m_width, m_table.data());
        }
    });
    m_meter.Measure(m_mixedCells, Own(m_mixed));
    return Keeps(m_mixedCells, time) || weight == 0;
}

void CVisFlashLimiter::Remember(const CVisPixels& picture)
{
    m_shown.resize(static_cast<size_t>(m_width) * static_cast<size_t>(m_height));
    pxvis::kernels::CopyRect(
        m_shown.data(), m_width, picture.topRow, picture.stride, m_width, m_height);
}

CVisPixels CVisFlashLimiter::Own(const std::vector<uint32_t>& pixels) const
{
    return { pixels.data(), m_width, m_width, m_height };
}
