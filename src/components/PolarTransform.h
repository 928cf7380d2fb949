#pragma once

#include <cstdint>

// What the maps of the transforms have in common: positions told by a distance from a centre and an
// angle around it.
namespace PolarTransform {

constexpr float twoPi = 6.2831855f;

// 16-bit entries in 1/32 pixel serve every picture that a window asks for. A larger picture, made
// only in files, would wrap in them and takes 32 bits.
bool TakesSmallEntries(int32_t width, int32_t height);

// 0 to 2 pi, from the positive x axis through negative y. `distance` is that of (x, y) from 0, 0.
float Angle(float x, float y, float distance);

struct Polar
{
    float distance = 0; // from the centre; 1 at the corners
    float angle = 0; // as Angle gives it
};

// Positions around a centre by polar coordinates, the angle in steps of 1/8192 turn.
class Circle
{
public:
    // Around the middle of an area with these half sides, in pixels.
    Circle(int32_t halfWidth, int32_t halfHeight);

    // Of a point in pixels from the centre, y downward.
    Polar PolarAt(float x, float y) const;

    struct Offset // in pixels from the centre, y upward
    {
        float x = 0;
        float y = 0;
    };

    // Any numbers; r wraps around.
    Offset OffsetOf(double d, double r) const;

private:
    static constexpr int32_t steps = 8192;

    struct Directions;
    static const Directions& UnitDirections();

    const Directions& m_directions;
    float m_radius; // pixels
};

}
