#pragma once

#include <cstdint>
#include <vector>

class CMathColumns;

// How far the source of a picture's pixels lies from them, at points some pixels apart. The
// equation's coordinates are those of the grid, whose middle may lie a few pixels off the
// picture's.
class CDisplacementGrid
{
public:
    static int64_t PointCount(int32_t width, int32_t height);

    // Pixels of 4 bytes that the grid of such a picture takes.
    static int64_t KeptPixels(int32_t width, int32_t height);

    // For a picture of 1 x 1 pixels or more.
    void Resize(int32_t width, int32_t height);

    // Runs the equation, in d (distance, 1 at the corners) and r (rotation, 1 for a full turn), for
    // each point in rows from the top. One that isn't compiled leaves about no displacement.
    void Fill(CMathColumns& equation, const double& d, const double& r);

    int32_t Width() const { return m_width; } // in points

    int32_t Height() const { return m_height; }

    // (x, y) pairs in 1/32 pixel, y downward, rows from the top.
    const int32_t* Points() const { return m_points.data(); }

private:
    int32_t HalfWidth() const; // in pixels

    int32_t HalfHeight() const;

    int32_t m_width = 0;
    int32_t m_height = 0;
    std::vector<float> m_distances; // of the points, as the equation finds them
    std::vector<float> m_rotations;
    std::vector<int32_t> m_points;
};
