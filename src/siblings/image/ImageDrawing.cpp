#include "siblings/image/ImageDrawing.h"

#include "kernels/CopyRect.h"
#include "kernels/FillRect.h"

#include <algorithm>

namespace pxvis::image {

OQRect Intersection(const OQRect& a, const OQRect& b)
{
    return { std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
        std::min(a.bottom, b.bottom) };
}

OQRect Union(const OQRect& a, const OQRect& b)
{
    if (IsEmpty(a) || IsEmpty(b))
        return IsEmpty(a) ? b : a;
    return { std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
        std::max(a.bottom, b.bottom) };
}

bool IsEmpty(const OQRect& rect)
{
    return rect.right <= rect.left || rect.bottom <= rect.top;
}

OQRect Bounds(const Pixels& pixels)
{
    return { 0, 0, pixels.width, pixels.height };
}

void FillRect(const Pixels& target, const OQRect& rect, uint32_t pixel)
{
    const OQRect inside = Intersection(rect, Bounds(target));
    if (IsEmpty(inside))
        return;
    kernels::FillRect(
        target.At(inside.left, inside.top), target.stride, inside.Width(), inside.Height(), pixel);
}

void CopyRect(
    const Pixels& target, const Pixels& source, const OQRect& sourceRect, int32_t x, int32_t y)
{
    const OQRect inside = Intersection(sourceRect, Bounds(source));
    if (IsEmpty(inside) || IsEmpty(sourceRect))
        return;
    // Where target pixel (0, 0) lies in the source; wide, since the corners may be far apart.
    const int64_t dx = int64_t { sourceRect.left } - x;
    const int64_t dy = int64_t { sourceRect.top } - y;
    const int64_t left = std::max<int64_t>(inside.left, dx);
    const int64_t top = std::max<int64_t>(inside.top, dy);
    const int64_t right = std::min<int64_t>(inside.right, dx + target.width);
    const int64_t bottom = std::min<int64_t>(inside.bottom, dy + target.height);
    if (left >= right || top >= bottom)
        return;
    kernels::CopyRect(target.At(static_cast<int32_t>(left - dx), static_cast<int32_t>(top - dy)),
        target.stride, source.At(static_cast<int32_t>(left), static_cast<int32_t>(top)),
        source.stride, static_cast<int32_t>(right - left), static_cast<int32_t>(bottom - top));
}

}
