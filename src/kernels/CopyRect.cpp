#include "kernels/CopyRect.h"

#include <cstring>
#include <functional>

namespace pxvis::kernels {

void CopyRect(uint32_t* target, ptrdiff_t targetStride, const uint32_t* source,
    ptrdiff_t sourceStride, int32_t width, int32_t height)
{
    if (width < 1)
        return;
    // A target that lies further along the way the rows go would overwrite rows not yet read.
    const bool targetBehind = std::less<const uint32_t*>()(source, target);
    const bool lastRowFirst = targetBehind == (targetStride > 0);
    for (int32_t k = 0; k < height; ++k) {
        const int32_t y = lastRowFirst ? height - 1 - k : k;
        std::memmove(target + y * targetStride, source + y * sourceStride,
            static_cast<size_t>(width) * sizeof(uint32_t));
    }
}

}
