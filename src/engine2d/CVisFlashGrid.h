#pragma once

#include "kernels/LinearLight.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// A picture that somebody else keeps: pixels 0xAARRGGBB (in memory B G R A; A is not looked at),
// topRow its highest row, stride the number of pixels from a row to the one below it, negative for
// pictures kept bottom row first.
struct CVisPixels
{
    const uint32_t* topRow = nullptr;
    ptrdiff_t stride = 0;
    int32_t width = 0; // 0 to 16384, as the height
    int32_t height = 0;

    const uint32_t* Row(int32_t y) const { return topRow + y * stride; }
};

// The mean light of a cell, each colour 0 to CVisFlashGrid::full.
struct CVisFlashCell
{
    int32_t red = 0;
    int32_t green = 0;
    int32_t blue = 0;
};

// Divides pictures of one size into near-square cells, 64 along the longer side where it has so
// many pixels, and tells the mean light of each.
//
// Pictures of more than 262144 pixels are measured at every 5th, 13th, 34th or 89th pixel of each
// row, each row further on than the last one by a Fibonacci number, so that every column of a cell
// is met as often as any other and each cell in at least one pixel. What lies between the measured
// pixels is missed: only patterns of single pixels that repeat in both directions at once can hide
// there, or look as if they flashed.
class CVisFlashGrid
{
public:
    static constexpr int32_t longSide = 64; // cells
    static constexpr int32_t full = 640'000'000; // 10 %, 80 % and 1/320 of it are whole numbers

    // True if the cells are others now; the size is not below 0.
    bool SetSize(int32_t width, int32_t height);

    // In pixels, of the whole and of a cell.
    int64_t Area() const { return int64_t { m_width } * m_height; }

    int64_t CellArea(size_t cell) const;

    size_t CellCount() const { return m_columnEnds.size() * m_rowEnds.size(); }

    // Row after row from the top; one for each cell. The picture has the grid's size.
    void Measure(std::vector<CVisFlashCell>& cells, const CVisPixels& picture);

private:
    int32_t m_width = 0;
    int32_t m_height = 0;
    int32_t m_step = 1; // pixels
    int32_t m_shift = 0; // pixels, from row to row
    std::vector<int32_t> m_columnEnds; // pixels
    std::vector<int32_t> m_rowEnds;
    std::vector<pxvis::kernels::LinearLightSum> m_sums; // of a row of cells
};
