#include "kernels/DrawStars.h"

#include "kernels/Wrapped.h"

#include <algorithm>

namespace pxvis::kernels {

namespace {

constexpr int32_t shades = 256;

int32_t Shade(int32_t depth, int32_t farthest)
{
    const int32_t scaled = MultiplyWrapped(depth, shades);
    // The least number has no opposite, so that dividing it by -1 would be undefined.
    const int32_t shade = farthest == -1 ? SubtractWrapped(0, scaled) : scaled / farthest;
    return std::clamp(shade, 0, shades - 1);
}

}

int32_t DrawStars(Star* stars, int32_t count, const StarView& view)
{
    const int32_t middleX = (view.width + 1) / 2;
    const int32_t middleY = (view.height + 1) / 2;
    int32_t kept = 0;
    for (int32_t i = 0; i < count; ++i) {
        Star star = stars[i];
        if (star.z <= 0)
            continue;
        const int32_t x = AddWrapped(middleX, MultiplyWrapped(star.x, 512) / star.z);
        const int32_t y = AddWrapped(middleY, MultiplyWrapped(star.y, 512) / star.z);
        if (x < 0 || x >= view.width || y < 0 || y >= view.height)
            continue;
        if (view.farthest != 0)
            view.bits[int64_t { view.height - 1 - y } * view.width + x]
                = view.pixels[Shade(star.z, view.farthest)];
        star.z = SubtractWrapped(star.z, view.speed);
        stars[kept++] = star;
    }
    return kept;
}

}
