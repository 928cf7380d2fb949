#include "kernels/Merge.h"

#include "kernels/VectorForm.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/MergeVector.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace pxvis::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

using scalar::MergeAdd;
using scalar::MergeBlend;
using scalar::MergeReplace;

#else

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Pixels = hn::ScalableTag<uint32_t>;
using Bytes = hn::Repartition<uint8_t, Pixels>;
using PixelVector = hn::Vec<Pixels>;

// Stores merged(target, source) wherever the source isn't transparent. All pixels are written, with
// what they were where they stay: a branch for each would cost many times as much.
template <typename Merged>
int32_t MergeWhole(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent,
    const Merged& merged)
{
    const Pixels d;
    const PixelVector key = hn::Set(d, transparent);
    const int32_t lanes = static_cast<int32_t>(hn::Lanes(d));
    const auto merge = [&](int32_t i) HWY_ATTR {
        const PixelVector old = hn::LoadU(d, target + i);
        const PixelVector pixels = hn::LoadU(d, source + i);
        hn::StoreU(hn::IfThenElse(hn::Eq(pixels, key), old, merged(old, pixels)), d, target + i);
    };
    int32_t i = 0;
    for (; i + 2 * lanes <= count; i += 2 * lanes) {
        merge(i);
        merge(i + lanes);
    }
    for (; i + lanes <= count; i += lanes)
        merge(i);
    return i;
}

}

void MergeReplace(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent)
{
    const int32_t done = MergeWhole(target, source, count, transparent,
        [](PixelVector, PixelVector pixels) HWY_ATTR { return pixels; });
    scalar::MergeReplace(target + done, source + done, count - done, transparent);
}

void MergeBlend(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent)
{
    const int32_t done = MergeWhole(
        target, source, count, transparent, [](PixelVector old, PixelVector pixels) HWY_ATTR {
            const Bytes bytes;
            const Pixels d;
            // The processor's average rounds up: less 1 where the sum is odd.
            const PixelVector average = hn::BitCast(
                d, hn::AverageRound(hn::BitCast(bytes, old), hn::BitCast(bytes, pixels)));
            const PixelVector odd = hn::And(hn::Xor(old, pixels), hn::Set(d, 0x01010101u));
            return hn::Sub(average, odd);
        });
    scalar::MergeBlend(target + done, source + done, count - done, transparent);
}

void MergeAdd(uint32_t* target, const uint32_t* source, int32_t count, uint32_t transparent)
{
    const int32_t done = MergeWhole(
        target, source, count, transparent, [](PixelVector old, PixelVector pixels) HWY_ATTR {
            const Bytes bytes;
            return hn::BitCast(
                Pixels(), hn::SaturatedAdd(hn::BitCast(bytes, old), hn::BitCast(bytes, pixels)));
        });
    scalar::MergeAdd(target + done, source + done, count - done, transparent);
}

#endif

}

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace pxvis::kernels {

PXVIS_VECTOR_KERNEL(MergeReplace,
    (uint32_t * target, const uint32_t* source, int32_t count, uint32_t transparent),
    (target, source, count, transparent))
PXVIS_VECTOR_KERNEL(MergeBlend,
    (uint32_t * target, const uint32_t* source, int32_t count, uint32_t transparent),
    (target, source, count, transparent))
PXVIS_VECTOR_KERNEL(MergeAdd,
    (uint32_t * target, const uint32_t* source, int32_t count, uint32_t transparent),
    (target, source, count, transparent))

}

#endif
