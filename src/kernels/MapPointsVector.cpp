#include "kernels/MapPoints.h"

#include "kernels/MathsCoefficients.h"
#include "kernels/MathsReduce.h"
#include "kernels/VectorForm.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/MapPointsVector.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

#if HWY_TARGET == HWY_SCALAR

namespace pxvis::kernels::HWY_NAMESPACE {

using scalar::CircleEntries;
using scalar::PolarPoints;
using scalar::TransformEntries16;
using scalar::TransformEntries32;
using scalar::TransformPoints;

}

#else

namespace pxvis::maths::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#include "kernels/MathsVector.inl"
#include "kernels/SingleMaths.inl"

}

namespace pxvis::kernels::HWY_NAMESPACE {

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using maths::HWY_NAMESPACE::SingleMaths;

using Doubles = hn::ScalableTag<double>; // two of these
using Floats = hn::ScalableTag<float>; // for each one of those
using Ints = hn::RebindToSigned<Floats>;
using FloatVector = hn::Vec<Floats>;
using IntVector = hn::Vec<Ints>;

constexpr int32_t lanes = static_cast<int32_t>(hn::MaxLanes(Floats()));

HWY_INLINE FloatVector Set(float value)
{
    return hn::Set(Floats(), value);
}

HWY_INLINE FloatVector LoadNarrowed(const double* values)
{
    return SingleMaths::Rounded(
        hn::LoadU(Doubles(), values), hn::LoadU(Doubles(), values + lanes / 2));
}

HWY_INLINE void StoreWidened(FloatVector values, double* target)
{
    hn::StoreU(SingleMaths::Widened<0>(values), Doubles(), target);
    hn::StoreU(SingleMaths::Widened<1>(values), Doubles(), target + lanes / 2);
}

// Gives the first lane of each vector of so many items, the last one overlapping the one before;
// false if there are too few for a vector.
template <typename Visit>
HWY_INLINE bool ForVectors(int32_t count, const Visit& visit)
{
    if (count < lanes)
        return false;
    int32_t i = 0;
    for (; i + lanes <= count; i += lanes)
        visit(i);
    if (i < count)
        visit(count - lanes);
    return true;
}

// As OQTruncateToInt32.
HWY_INLINE IntVector Truncated(FloatVector value)
{
    const auto inRange
        = hn::And(hn::Le(Set(-2147483648.0f), value), hn::Lt(value, Set(2147483648.0f)));
    return hn::IfThenElse(hn::RebindMask(Ints(), inRange), hn::ConvertTo(Ints(), value),
        hn::Set(Ints(), std::numeric_limits<int32_t>::min()));
}

HWY_INLINE FloatVector Angle(FloatVector x, FloatVector y, FloatVector distance)
{
    const auto atCenter = hn::Eq(distance, hn::Zero(Floats()));
    const FloatVector cosine = hn::Div(x, hn::IfThenElse(atCenter, Set(1.0f), distance));
    const FloatVector angle = SingleMaths::Acos(cosine);
    const FloatVector turned
        = hn::IfThenElse(hn::Gt(y, hn::Zero(Floats())), hn::Sub(Set(twoPi), angle), angle);
    return hn::IfThenZeroElse(atCenter, turned);
}

// Positions along a row, which are whole numbers that a float holds, from lane i on. `first` are
// those of lane 0: a new sequence would go lane by lane through memory.
HWY_INLINE FloatVector Along(FloatVector first, float stepX, int32_t i)
{
    return hn::Add(first, Set(static_cast<float>(i) * stepX));
}

HWY_INLINE FloatVector AlongFrom(float x, float stepX)
{
    return hn::Add(Set(x), hn::Mul(hn::Iota(Floats(), 0.0f), Set(stepX)));
}

struct Place // pairs of whole numbers
{
    IntVector x;
    IntVector y;
};

HWY_INLINE Place TransformPlace(
    const double* d, const double* r, const TransformCenter& center, bool clips, int32_t clipped)
{
    const FloatVector radius = Set(center.radius);
    const FloatVector distance = hn::Mul(LoadNarrowed(d), radius);
    const FloatVector angle = hn::Mul(LoadNarrowed(r), Set(twoPi));
    FloatVector sine;
    FloatVector cosine;
    SingleMaths::SinCos(hn::Sub(Set(twoPi), angle), sine, cosine);
    const FloatVector right = hn::Mul(cosine, distance);
    const FloatVector up = hn::Mul(sine, distance);
    const FloatVector unit = Set(32.0f);
    const IntVector x = Truncated(hn::Mul(hn::Add(right, Set(static_cast<float>(center.x))), unit));
    const IntVector y = Truncated(hn::Mul(hn::Sub(Set(static_cast<float>(center.y)), up), unit));
    if (!clips)
        return { x, y };
    const auto outside = hn::RebindMask(Ints(), hn::Gt(distance, radius));
    const IntVector mark = hn::Set(Ints(), clipped);
    return { hn::IfThenElse(outside, mark, x), hn::IfThenElse(outside, mark, y) };
}

}

void PolarPoints(float* distances, float* angles, float x, float stepX, float y, int32_t count)
{
    const FloatVector first = AlongFrom(x, stepX);
    const auto visit = [&](int32_t i) HWY_ATTR {
        const FloatVector along = Along(first, stepX, i);
        const FloatVector distance = hn::Sqrt(hn::Add(hn::Mul(along, along), Set(y * y)));
        hn::StoreU(distance, Floats(), distances + i);
        hn::StoreU(Angle(along, Set(y), distance), Floats(), angles + i);
    };
    if (!ForVectors(count, visit))
        scalar::PolarPoints(distances, angles, x, stepX, y, count);
}

void TransformPoints(double* d, double* r, double* x, double* y, const TransformCenter& center,
    int32_t column, int32_t row, int32_t count)
{
    // Beyond this, squares don't fit into 32 bits.
    constexpr int64_t farthest = 32767;
    const int64_t up = int64_t { center.y } - row;
    const int64_t right = int64_t { column } - center.x;
    const bool isNear = std::abs(up) <= farthest && right >= -farthest && right + count <= farthest;
    const IntVector upSquared = hn::Set(Ints(), isNear ? static_cast<int32_t>(up * up) : 0);
    const FloatVector radius = Set(center.radius);
    const FloatVector upward = Set(static_cast<float>(up));
    const FloatVector upPart = hn::Div(upward, radius);
    const IntVector start = hn::Iota(Ints(), isNear ? static_cast<int32_t>(right) : 0);
    const auto visit = [&](int32_t i) HWY_ATTR {
        const IntVector along = hn::Add(start, hn::Set(Ints(), i));
        const FloatVector alongFloat = hn::ConvertTo(Floats(), along);
        const IntVector sum = hn::Add(hn::Mul(along, along), upSquared);
        const FloatVector distance = hn::Sqrt(hn::ConvertTo(Floats(), sum));
        const FloatVector angle = Angle(alongFloat, upward, distance);
        StoreWidened(hn::Div(distance, radius), d + i);
        StoreWidened(hn::Div(angle, Set(twoPi)), r + i);
        StoreWidened(hn::Div(alongFloat, radius), x + i);
        StoreWidened(upPart, y + i);
    };
    if (!isNear || !ForVectors(count, visit))
        scalar::TransformPoints(d, r, x, y, center, column, row, count);
}

void TransformEntries16(uint16_t* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, uint16_t clipped)
{
    const auto visit = [&](int32_t i) HWY_ATTR {
        const Place place = TransformPlace(d + i, r + i, center, clips, clipped);
        const IntVector pair
            = hn::Or(hn::And(place.x, hn::Set(Ints(), 0xFFFF)), hn::ShiftLeft<16>(place.y));
        hn::StoreU(hn::BitCast(hn::Repartition<uint16_t, Ints>(), pair),
            hn::Repartition<uint16_t, Ints>(), entries + 2 * i);
    };
    if (!ForVectors(count, visit))
        scalar::TransformEntries16(entries, d, r, count, center, clips, clipped);
}

void TransformEntries32(uint32_t* entries, const double* d, const double* r, int32_t count,
    const TransformCenter& center, bool clips, uint32_t clipped)
{
    const hn::RebindToUnsigned<Ints> unsignedInts;
    const auto visit = [&](int32_t i) HWY_ATTR {
        const Place place
            = TransformPlace(d + i, r + i, center, clips, static_cast<int32_t>(clipped));
        hn::StoreInterleaved2(hn::BitCast(unsignedInts, place.x),
            hn::BitCast(unsignedInts, place.y), unsignedInts, entries + 2 * i);
    };
    if (!ForVectors(count, visit))
        scalar::TransformEntries32(entries, d, r, count, center, clips, clipped);
}

void CircleEntries(int32_t* entries, const double* d, const double* r, int32_t count,
    const CircleDirections& circle, float x, float stepX, float y)
{
    const FloatVector radius = Set(circle.radius);
    const FloatVector unit = Set(32.0f);
    const FloatVector first = AlongFrom(x, stepX);
    const auto visit = [&](int32_t i) HWY_ATTR {
        const IntVector step = hn::And(
            Truncated(hn::Mul(LoadNarrowed(r + i), Set(static_cast<float>(circle.steps)))),
            hn::Set(Ints(), circle.steps - 1));
        int32_t steps[lanes];
        float cosines[lanes];
        float sines[lanes];
        hn::StoreU(step, Ints(), steps);
        for (int32_t k = 0; k < lanes; ++k) {
            cosines[k] = circle.cosines[steps[k]];
            sines[k] = circle.sines[steps[k]];
        }
        const FloatVector distance = LoadNarrowed(d + i);
        const FloatVector right = hn::Mul(distance, hn::Mul(hn::LoadU(Floats(), cosines), radius));
        const FloatVector up = hn::Mul(distance, hn::Mul(hn::LoadU(Floats(), sines), radius));
        const FloatVector moveX
            = hn::Sub(hn::Add(right, Set(circle.centerX)), Along(first, stepX, i));
        const FloatVector moveY = hn::Sub(hn::Sub(Set(circle.centerY), up), Set(y));
        hn::StoreInterleaved2(Truncated(hn::Mul(moveX, unit)), Truncated(hn::Mul(moveY, unit)),
            Ints(), entries + 2 * i);
    };
    if (!ForVectors(count, visit))
        scalar::CircleEntries(entries, d, r, count, circle, x, stepX, y);
}

}

#endif

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace pxvis::kernels {

PXVIS_VECTOR_KERNEL(PolarPoints,
    (float* distances, float* angles, float x, float stepX, float y, int32_t count),
    (distances, angles, x, stepX, y, count))
PXVIS_VECTOR_KERNEL(TransformPoints,
    (double* d, double* r, double* x, double* y, const TransformCenter& center, int32_t column,
        int32_t row, int32_t count),
    (d, r, x, y, center, column, row, count))
PXVIS_VECTOR_KERNEL(TransformEntries16,
    (uint16_t * entries, const double* d, const double* r, int32_t count,
        const TransformCenter& center, bool clips, uint16_t clipped),
    (entries, d, r, count, center, clips, clipped))
PXVIS_VECTOR_KERNEL(TransformEntries32,
    (uint32_t * entries, const double* d, const double* r, int32_t count,
        const TransformCenter& center, bool clips, uint32_t clipped),
    (entries, d, r, count, center, clips, clipped))
PXVIS_VECTOR_KERNEL(CircleEntries,
    (int32_t * entries, const double* d, const double* r, int32_t count,
        const CircleDirections& circle, float x, float stepX, float y),
    (entries, d, r, count, circle, x, stepX, y))

}

#endif
