#pragma once

#include "engine2d/CVisFlashCounter.h"
#include "engine2d/CVisFlashGrid.h"

#include <cstdint>
#include <vector>

// Tells whether pictures that follow each other flash more than is safe for people with
// photosensitive epilepsy: more than three general or red flashes within any second, over more than
// a quarter of the picture. After WCAG 2.1, success criterion 2.3.1 and its definition of the
// general flash and red flash thresholds, whose quarter of any 10 degrees of the field of view
// becomes a quarter of the picture, as nobody knows how large it is shown.
//
// - All is measured on cells of the picture (CVisFlashGrid), in linear light from sRGB colours.
// - General: a cell changes by 10 % of the largest relative luminance or more, and the darker end
//   of the change is below 80 %. Luminance is 0.2126 R + 0.7152 G + 0.0722 B.
// - Red: (R - G - B) * 320, below 0 taken as 0, changes by more than 20, and one end is a saturated
//   red, R / (R + G + B) >= 0.8.
// - A cell's transition is a change against the one before: from the highest value since it last
//   rose, or the lowest since it last fell. So a rise that takes many pictures is one transition,
//   and noise below the threshold none.
// - The picture makes a transition, up or down alike, once more than a quarter of its area has made
//   transitions concurrently: within less than a 24th of a second, a picture of a film. Cells that
//   follow in that time after it belong to it, too; each cell to one transition once.
// - Two transitions are a flash. More than six within less than a second are too many: a strobe of
//   3 a second has six.
//
// What is missed: areas that each flash fast but in turns spread so evenly that never a quarter
// does so concurrently, and patterns finer than a cell whose mean stays the same. Noise of black
// and white pixels counts though it is harmless: the mean of few pixels wavers by itself.
//
// The same pictures and times give the same result everywhere. One thread at a time.
class CVisFlashMeter
{
public:
    static constexpr int64_t second = 1'000'000'000; // ns, the unit of all times
    static constexpr int64_t concurrency = second / 24;
    static constexpr int32_t mostTransitions = 6; // within a second

    // The next picture, shown from `time` on. An earlier time than the last one counts as that.
    // Another size than the last one's starts the cells afresh; what was counted stays.
    void Add(const CVisPixels& picture, int64_t time);

    // The same in two steps: measuring, which changes nothing but the size, and counting.
    void Measure(std::vector<CVisFlashCell>& cells, const CVisPixels& picture);
    void AddMeasured(const std::vector<CVisFlashCell>& cells, int64_t time);

    // The second that ends with the last picture has too many flashes.
    bool IsExceeded(CVisFlashKind kind) const
    {
        return Counter(kind).TransitionCount() > mostTransitions;
    }

    bool IsExceeded() const
    {
        return IsExceeded(CVisFlashKind::General) || IsExceeded(CVisFlashKind::Red);
    }

    // One transition more could be too many.
    bool IsAtLimit() const
    {
        return m_general.TransitionCount() >= mostTransitions
            || m_red.TransitionCount() >= mostTransitions;
    }

    // What happened in that second.
    const CVisFlashCounter& Counter(CVisFlashKind kind) const
    {
        return kind == CVisFlashKind::General ? m_general : m_red;
    }

private:
    int64_t m_time = INT64_MIN;
    CVisFlashGrid m_grid;
    CVisFlashCounter m_general { CVisFlashKind::General };
    CVisFlashCounter m_red { CVisFlashKind::Red };
    std::vector<CVisFlashCell> m_measured;
};
