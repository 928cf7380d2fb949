#include "kernels/DrawLine.h"

#include <algorithm>

namespace pxvis::kernels {

namespace {

// An axis of the picture with the line's way along it.
struct Axis
{
    int64_t start;
    int64_t direction; // 1 or -1
    uint64_t length; // at most 2^32 - 1
    int64_t size; // of the picture
    ptrdiff_t stride; // in memory, from a pixel to the next
};

// First and last count of steps; none if first is above last.
struct Steps
{
    int64_t first;
    int64_t last;
};

Axis MakeAxis(int32_t from, int32_t to, int32_t size, ptrdiff_t stride)
{
    const int64_t way = int64_t { to } - from;
    return { from, way < 0 ? -1 : 1, static_cast<uint64_t>(way < 0 ? -way : way), size, stride };
}

Steps StepsInside(const Axis& axis)
{
    const int64_t toNearEdge = axis.direction > 0 ? -axis.start : axis.start - (axis.size - 1);
    const int64_t length = static_cast<int64_t>(axis.length);
    return { std::max<int64_t>(toNearEdge, 0), std::min(toNearEdge + axis.size - 1, length) };
}

}

void DrawLine(uint32_t* first, ptrdiff_t stride, int32_t width, int32_t height, int32_t x1,
    int32_t y1, int32_t x2, int32_t y2, uint32_t pixel)
{
    const Axis xAxis = MakeAxis(x1, x2, width, 1);
    const Axis yAxis = MakeAxis(y1, y2, height, stride);
    const bool steep = yAxis.length > xAxis.length;
    const Axis& major = steep ? yAxis : xAxis;
    const Axis& minor = steep ? xAxis : yAxis;

    // a and b are below 2^32, so that n * b + a / 2 and m * a fit 64 bits for n <= a, m <= b.
    const uint64_t a = std::max<uint64_t>(major.length, 1);
    const uint64_t b = minor.length;
    const auto minorAt = [&](uint64_t n) { return (n * b + a / 2) / a; };
    const auto firstStepWithMinor = [&](uint64_t m) {
        if (m == 0)
            return uint64_t { 0 };
        const uint64_t scaled = m * a - a / 2;
        return scaled / b + (scaled % b != 0);
    };

    Steps steps = StepsInside(major);
    const Steps minorSteps = StepsInside(minor);
    if (steps.first > steps.last || minorSteps.first > minorSteps.last)
        return;
    const auto minorFirst = static_cast<uint64_t>(minorSteps.first);
    const auto minorLast = static_cast<uint64_t>(minorSteps.last);
    steps.first = std::max(steps.first, static_cast<int64_t>(firstStepWithMinor(minorFirst)));
    if (minorLast < b)
        steps.last
            = std::min(steps.last, static_cast<int64_t>(firstStepWithMinor(minorLast + 1)) - 1);
    if (steps.first > steps.last)
        return;

    const auto n = static_cast<uint64_t>(steps.first);
    const int64_t majorPosition = major.start + major.direction * steps.first;
    const int64_t minorPosition = minor.start + minor.direction * static_cast<int64_t>(minorAt(n));
    ptrdiff_t at = majorPosition * major.stride + minorPosition * minor.stride;
    uint64_t error = (n * b + a / 2) % a;
    for (int64_t left = steps.last - steps.first; left >= 0; --left) {
        first[at] = pixel;
        at += major.direction * major.stride;
        error += b;
        if (error >= a) {
            error -= a;
            at += minor.direction * minor.stride;
        }
    }
}

}
