#pragma once

#include <cstdint>

namespace pxvis::kernels {

// The ends of a map's road from a picture's points by an equation, in columns of values, to the
// places where the points' colours come from. Angles run from the positive x axis through negative
// y, 0 to 2 pi; a full turn is 1 for the equations.

constexpr float twoPi = 6.2831855f;

// Distance and angle of the points (x + i * stepX, y), from 0, 0.
void PolarPoints(float* distances, float* angles, float x, float stepX, float y, int32_t count);

// A centre in whole pixels from the top left, and the distance from there that counts as 1.
struct TransformCenter
{
    int32_t x = 0;
    int32_t y = 0;
    float radius = 1;
};

// What an equation is given for the pixels from (column, row) on to the right: distance and
// rotation, and the place as parts of the radius, y upward. The row is at most 2^24 pixels long.
void TransformPoints(double* d, double* r, double* x, double* y, const TransformCenter& center,
    int32_t column, int32_t row, int32_t count);

// Where distances and rotations lead to, from the top left, in 1/32 pixel: pairs (x, y). Those
// behind the radius become (clipped, clipped) if `clips`. Positions below 0 wrap.
void TransformEntries16(uint16_t* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, uint16_t clipped);
void TransformEntries32(uint32_t* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, uint32_t clipped);

// A circle by a table of directions, and the points that are moved along it.
struct CircleDirections
{
    static constexpr int32_t steps = 8192; // of a full turn

    const float* cosines = nullptr;
    const float* sines = nullptr;
    float radius = 0; // pixels
    float centerX = 0; // of the circle; y downward
    float centerY = 0;
};

// How far to the right and below of the points (x + i * stepX, y) the places are where distances
// and rotations lead to, in 1/32 pixel: pairs.
void CircleEntries(int32_t* entries, const double* d, const double* r, int32_t count,
    const CircleDirections& circle, float x, float stepX, float y);

namespace scalar {

void PolarPoints(float* distances, float* angles, float x, float stepX, float y, int32_t count);
void TransformPoints(double* d, double* r, double* x, double* y, const TransformCenter& center,
    int32_t column, int32_t row, int32_t count);
void TransformEntries16(uint16_t* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, uint16_t clipped);
void TransformEntries32(uint32_t* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, uint32_t clipped);
void CircleEntries(int32_t* entries, const double* d, const double* r, int32_t count,
    const CircleDirections& circle, float x, float stepX, float y);

}

}
