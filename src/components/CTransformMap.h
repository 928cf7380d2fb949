#pragma once

#include "engine2d/VisPropertyText.h"

#include <cstdint>
#include <vector>

class CMathEvaluator;

// Where each pixel of a picture comes from: an equation in d (distance from the centre) and r
// (rotation), run once for each pixel. Entries are pairs (x, y) in 1/32 pixel, rows from the top.
class CTransformMap
{
public:
    struct Settings
    {
        const OQString* equation = nullptr;
        int32_t radiusMode
            = 2; // 0 smaller half side, 1 larger, 2 to the corner, 3 half width, 4 half height
        bool clipAtRadius = true;
        VisFractionPoint center; // in half sizes, from the middle
    };

    void Clear();

    bool IsBuiltFor(int32_t width, int32_t height) const;

    // Pixels of 4 bytes that the map of such a picture takes.
    static int64_t KeptPixels(int32_t width, int32_t height);

    // A bad equation leaves d and r as they are: the identity. False, with no map, if the Draw may
    // not cost it or memory ran out.
    bool Build(int32_t width, int32_t height, const Settings& settings);

    // One of the two is null: see PolarTransform::TakesSmallEntries.
    const uint16_t* Entries16() const { return m_entries16.empty() ? nullptr : m_entries16.data(); }

    const uint32_t* Entries32() const { return m_entries32.empty() ? nullptr : m_entries32.data(); }

private:
    template <typename Entry>
    bool Fill(std::vector<Entry>& entries, Entry clipped, CMathEvaluator& equation,
        const Settings& settings);

    int32_t m_width = 0;
    int32_t m_height = 0;
    std::vector<uint16_t> m_entries16;
    std::vector<uint32_t> m_entries32;
};
