#include "components/PolarTransform.h"

#include "foundation/OQTruncate.h"
#include "kernels/Maths.h"

#include <cmath>

namespace maths = pxvis::maths;

namespace PolarTransform {

namespace {

constexpr int64_t largestSmallPicture = 1'920'000; // pixels
constexpr int32_t largestSmallSide = 2047;

}

bool TakesSmallEntries(int32_t width, int32_t height)
{
    return int64_t { width } * height <= largestSmallPicture && width <= largestSmallSide
        && height <= largestSmallSide;
}

float Angle(float x, float y, float distance)
{
    if (distance == 0.0f)
        return 0.0f;
    const float cosine = x / distance;
    const float angle = static_cast<float>(maths::Acos(double { cosine }));
    return y > 0.0f ? twoPi - angle : angle;
}

// One table for all circles: it is the radius that differs.
struct Circle::Directions
{
    Directions()
    {
        for (int32_t i = 0; i < steps; ++i) {
            const float angle = static_cast<float>(i) * twoPi * (1.0f / steps);
            cosine[i] = static_cast<float>(maths::Cos(double { angle }));
            sine[i] = static_cast<float>(maths::Sin(double { angle }));
        }
    }

    float cosine[steps];
    float sine[steps];
};

const Circle::Directions& Circle::UnitDirections()
{
    static const Directions directions;
    return directions;
}

Circle::Circle(int32_t halfWidth, int32_t halfHeight)
    : m_directions(UnitDirections())
{
    const double width = halfWidth;
    const double height = halfHeight;
    m_radius = static_cast<float>(std::sqrt(width * width + height * height));
}

Polar Circle::PolarAt(float x, float y) const
{
    const float distance = std::sqrt(x * x + y * y);
    return { distance / m_radius, Angle(x, y, distance) };
}

Circle::Offset Circle::OffsetOf(double d, double r) const
{
    const float distance = static_cast<float>(d);
    const int32_t step
        = OQTruncateToInt32(static_cast<float>(r) * static_cast<float>(steps)) & (steps - 1);
    return { distance * (m_directions.cosine[step] * m_radius),
        distance * (m_directions.sine[step] * m_radius) };
}

}
