#include "kernels/BlendColor.h"

#include "kernels/VectorForm.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/BlendColorVector.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace pxvis::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

using scalar::AddColor;
using scalar::SubtractColor;

#else

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Pixels = hn::ScalableTag<uint32_t>;
using Bytes = hn::Repartition<uint8_t, Pixels>;
using ByteVector = hn::Vec<Bytes>;

template <typename Blended>
int32_t BlendWhole(uint32_t* target, int32_t count, uint32_t pixel, const Blended& blended)
{
    const Pixels d;
    const Bytes bytes;
    const ByteVector color = hn::BitCast(bytes, hn::Set(d, pixel));
    const auto lanes = static_cast<int32_t>(hn::Lanes(d));
    int32_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const ByteVector old = hn::BitCast(bytes, hn::LoadU(d, target + i));
        hn::StoreU(hn::BitCast(d, blended(old, color)), d, target + i);
    }
    return i;
}

}

void AddColor(uint32_t* target, int32_t count, uint32_t pixel)
{
    const int32_t done = BlendWhole(target, count, pixel,
        [](ByteVector old, ByteVector color) HWY_ATTR { return hn::SaturatedAdd(old, color); });
    scalar::AddColor(target + done, count - done, pixel);
}

void SubtractColor(uint32_t* target, int32_t count, uint32_t pixel)
{
    const int32_t done = BlendWhole(target, count, pixel,
        [](ByteVector old, ByteVector color) HWY_ATTR { return hn::SaturatedSub(old, color); });
    scalar::SubtractColor(target + done, count - done, pixel);
}

#endif

}

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace pxvis::kernels {

PXVIS_VECTOR_KERNEL(
    AddColor, (uint32_t * target, int32_t count, uint32_t pixel), (target, count, pixel))
PXVIS_VECTOR_KERNEL(
    SubtractColor, (uint32_t * target, int32_t count, uint32_t pixel), (target, count, pixel))

}

#endif
