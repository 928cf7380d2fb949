#include "kernels/MapPoints.h"

#include "kernels/Maths.h"

#include <cmath>
#include <limits>

namespace pxvis::kernels::scalar {

namespace {

// As OQTruncateToInt32.
int32_t Truncated(float value)
{
    return value >= -2147483648.0f && value < 2147483648.0f ? static_cast<int32_t>(value)
                                                            : std::numeric_limits<int32_t>::min();
}

float Angle(float x, float y, float distance)
{
    if (distance == 0.0f)
        return 0.0f;
    const float cosine = x / distance;
    const float angle = static_cast<float>(maths::Acos(double { cosine }));
    return y > 0.0f ? twoPi - angle : angle;
}

uint64_t Square(int64_t value)
{
    return static_cast<uint64_t>(value) * static_cast<uint64_t>(value);
}

template <typename Entry>
void TransformEntries(Entry* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, Entry clipped)
{
    const float originX = static_cast<float>(center.x);
    const float originY = static_cast<float>(center.y);
    for (int32_t i = 0; i < count; ++i, entries += 2) {
        const float distance = static_cast<float>(d[i]) * center.radius;
        const float angle = static_cast<float>(r[i]) * twoPi;
        if (clips && distance > center.radius) {
            entries[0] = clipped;
            entries[1] = clipped;
            continue;
        }
        const double w = double { twoPi - angle };
        const float cosine = static_cast<float>(maths::Cos(w));
        const float sine = static_cast<float>(maths::Sin(w));
        entries[0] = static_cast<Entry>(Truncated((cosine * distance + originX) * 32.0f));
        entries[1] = static_cast<Entry>(Truncated((originY - sine * distance) * 32.0f));
    }
}

}

void PolarPoints(float* distances, float* angles, float x, float stepX, float y, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const float along = x + static_cast<float>(i) * stepX;
        distances[i] = std::sqrt(along * along + y * y);
        angles[i] = Angle(along, y, distances[i]);
    }
}

void TransformPoints(double* d, double* r, double* x, double* y, const TransformCenter& center,
    int32_t column, int32_t row, int32_t count)
{
    const int64_t up = int64_t { center.y } - row;
    for (int32_t i = 0; i < count; ++i) {
        const int64_t right = int64_t { column } + i - center.x;
        const float distance = std::sqrt(static_cast<float>(Square(right) + Square(up)));
        const float angle = Angle(static_cast<float>(right), static_cast<float>(up), distance);
        d[i] = double { distance / center.radius };
        r[i] = double { angle / twoPi };
        x[i] = double { static_cast<float>(right) / center.radius };
        y[i] = double { static_cast<float>(up) / center.radius };
    }
}

void TransformEntries16(uint16_t* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, uint16_t clipped)
{
    TransformEntries(entries, d, r, count, center, clips, clipped);
}

void TransformEntries32(uint32_t* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, uint32_t clipped)
{
    TransformEntries(entries, d, r, count, center, clips, clipped);
}

void CircleEntries(int32_t* entries, const double* d, const double* r, int32_t count,
    const CircleDirections& circle, float x, float stepX, float y)
{
    for (int32_t i = 0; i < count; ++i) {
        const float distance = static_cast<float>(d[i]);
        const int32_t step = Truncated(static_cast<float>(r[i]) * static_cast<float>(circle.steps))
            & (circle.steps - 1);
        const float right = distance * (circle.cosines[step] * circle.radius);
        const float up = distance * (circle.sines[step] * circle.radius);
        const float along = x + static_cast<float>(i) * stepX;
        entries[2 * i] = Truncated((right + circle.centerX - along) * 32.0f);
        entries[2 * i + 1] = Truncated((circle.centerY - up - y) * 32.0f);
    }
}

}
