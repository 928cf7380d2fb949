#pragma once

#include <cstdint>
#include <vector>

class CMathEvaluator;

// Where each pixel of a picture comes from, told from the picture's centre: an equation in d
// (distance, 1 at the corners) and r (rotation, 1 for a full turn), run once for each pixel.
// Entries are pairs (x, y) in 1/32 pixel, y downward, rows from the top.
class CSuperTransformMap
{
public:
    void Clear();

    bool IsBuilt() const { return Entries16() || Entries32(); }

    // Pixels of 4 bytes that the map of such a picture takes.
    static int64_t KeptPixels(int32_t width, int32_t height);

    // An equation that isn't compiled leaves d and r as they are: the identity. False, with the map
    // as it was, if the Draw may not cost it; without one if memory ran out. After a build for
    // another size Clear comes first.
    bool Build(int32_t width, int32_t height, CMathEvaluator& equation);

    // One of the two is null: see PolarTransform::TakesSmallEntries.
    const int16_t* Entries16() const { return m_entries16.empty() ? nullptr : m_entries16.data(); }

    const int32_t* Entries32() const { return m_entries32.empty() ? nullptr : m_entries32.data(); }

private:
    void FillPolars(int32_t width, int32_t height);

    template <typename Entry>
    bool Fill(
        std::vector<Entry>& entries, int32_t width, int32_t height, CMathEvaluator& equation) const;

    // Of the pixels down to the centre's row; the rows below mirror them. Kept, since the list's
    // next equation needs the same ones.
    std::vector<float> m_distances; // 1 at the corners
    std::vector<float> m_angles; // 0 to 2 pi
    std::vector<int16_t> m_entries16;
    std::vector<int32_t> m_entries32;
};
