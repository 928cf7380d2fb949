#include "components/PolarTransform.h"

#include "kernels/Maths.h"

#include <cmath>

namespace PolarTransform {

namespace {

namespace maths = pxvis::maths;

using pxvis::kernels::CircleDirections;
using pxvis::kernels::twoPi;

constexpr int64_t largestSmallPicture = 1'920'000; // pixels
constexpr int32_t largestSmallSide = 2047;

// One table for all circles: it is the radius that differs.
struct UnitDirections
{
    UnitDirections()
    {
        for (int32_t i = 0; i < CircleDirections::steps; ++i) {
            const float angle = static_cast<float>(i) * twoPi * (1.0f / CircleDirections::steps);
            cosines[i] = static_cast<float>(maths::Cos(double { angle }));
            sines[i] = static_cast<float>(maths::Sin(double { angle }));
        }
    }

    float cosines[CircleDirections::steps];
    float sines[CircleDirections::steps];
};

}

bool TakesSmallEntries(int32_t width, int32_t height)
{
    return int64_t { width } * height <= largestSmallPicture && width <= largestSmallSide
        && height <= largestSmallSide;
}

CircleDirections Circle(int32_t halfWidth, int32_t halfHeight, float centerX, float centerY)
{
    static const UnitDirections directions;
    const double width = halfWidth;
    const double height = halfHeight;
    return { directions.cosines, directions.sines,
        static_cast<float>(std::sqrt(width * width + height * height)), centerX, centerY };
}

}
