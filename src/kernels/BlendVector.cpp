#include "kernels/Blend.h"
#include "kernels/BlendCoverage.h"
#include "kernels/VectorForm.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/BlendVector.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace pxvis::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

using scalar::BlendCoverage;
using scalar::BlendOver;
using scalar::BlendRow;

#else

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<uint16_t>;
using Pixels = hn::Repartition<uint32_t, Words>;
using FewBytes = hn::Rebind<uint8_t, Pixels>;
using WordVector = hn::Vec<Words>;
using PixelVector = hn::Vec<Pixels>;

// Bytes 0 and 2 of each pixel, or 1 and 3, as words.
WordVector Even(PixelVector pixels)
{
    return hn::And(hn::BitCast(Words(), pixels), hn::Set(Words(), uint16_t { 0xFF }));
}

WordVector Odd(PixelVector pixels)
{
    return hn::ShiftRight<8>(hn::BitCast(Words(), pixels));
}

// Bytes as lanes of 32 bits, to weigh both words of a pixel.
WordVector InBothWords(PixelVector bytes)
{
    return hn::BitCast(Words(), hn::Or(bytes, hn::ShiftLeft<16>(bytes)));
}

// (product + 127) / 255 for 0 to 255 * 255.
WordVector DividedBy255(WordVector product)
{
    const Words d;
    const WordVector sum = hn::Add(product, hn::Set(d, uint16_t { 128 }));
    const WordVector cut = hn::Sub(sum, hn::Set(d, uint16_t { 1 }));
    return hn::ShiftRight<8>(hn::Add(sum, hn::ShiftRight<8>(cut)));
}

WordVector Mixed(WordVector old, WordVector color, WordVector part)
{
    const WordVector rest = hn::Sub(hn::Set(Words(), uint16_t { 255 }), part);
    return DividedBy255(hn::Add(hn::Mul(old, rest), hn::Mul(color, part)));
}

// With the alpha of `old`.
PixelVector Joined(WordVector even, WordVector odd, PixelVector old)
{
    const Pixels d;
    const PixelVector colors = hn::BitCast(d, hn::Or(even, hn::ShiftLeft<8>(odd)));
    const PixelVector mask = hn::Set(d, 0x00FFFFFFu);
    return hn::Or(hn::And(colors, mask), hn::AndNot(mask, old));
}

// Stores blended(target, i) for whole vectors.
template <typename Blended>
int32_t BlendWhole(uint32_t* target, int32_t count, const Blended& blended)
{
    const Pixels d;
    const auto lanes = static_cast<int32_t>(hn::Lanes(d));
    int32_t i = 0;
    for (; i + lanes <= count; i += lanes)
        hn::StoreU(blended(hn::LoadU(d, target + i), i), d, target + i);
    return i;
}

}

void BlendRow(uint32_t* target, const uint32_t* source, int32_t count)
{
    const int32_t done = BlendWhole(target, count, [&](PixelVector old, int32_t i) HWY_ATTR {
        const PixelVector pixels = hn::LoadU(Pixels(), source + i);
        const WordVector alpha = InBothWords(hn::ShiftRight<24>(pixels));
        return Joined(
            Mixed(Even(old), Even(pixels), alpha), Mixed(Odd(old), Odd(pixels), alpha), old);
    });
    scalar::BlendRow(target + done, source + done, count - done);
}

void BlendCoverage(uint32_t* target, const uint8_t* coverage, int32_t count, uint32_t pixel)
{
    const Pixels d;
    const WordVector even = Even(hn::Set(d, pixel));
    const WordVector odd = Odd(hn::Set(d, pixel));
    const int32_t done = BlendWhole(target, count, [&](PixelVector old, int32_t i) HWY_ATTR {
        const WordVector part
            = InBothWords(hn::PromoteTo(Pixels(), hn::LoadU(FewBytes(), coverage + i)));
        return Joined(Mixed(Even(old), even, part), Mixed(Odd(old), odd, part), old);
    });
    scalar::BlendCoverage(target + done, coverage + done, count - done, pixel);
}

void BlendOver(uint32_t* target, const uint32_t* source, int32_t count)
{
    const int32_t done = BlendWhole(target, count, [&](PixelVector old, int32_t i) HWY_ATTR {
        const Pixels d;
        const Words words;
        const WordVector full = hn::Set(words, uint16_t { 255 });
        const PixelVector pixels = hn::LoadU(d, source + i);
        const PixelVector alpha = hn::ShiftRight<24>(pixels);
        const WordVector rest = hn::Sub(full, InBothWords(alpha));
        const auto over = [&](WordVector color, WordVector there) HWY_ATTR {
            return hn::Min(full, hn::Add(color, DividedBy255(hn::Mul(there, rest))));
        };
        const PixelVector result
            = Joined(over(Even(pixels), Even(old)), over(Odd(pixels), Odd(old)), old);
        return hn::IfThenElse(hn::Eq(alpha, hn::Zero(d)), old, result);
    });
    scalar::BlendOver(target + done, source + done, count - done);
}

#endif

}

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace pxvis::kernels {

PXVIS_VECTOR_KERNEL(
    BlendRow, (uint32_t * target, const uint32_t* source, int32_t count), (target, source, count))
PXVIS_VECTOR_KERNEL(BlendCoverage,
    (uint32_t * target, const uint8_t* coverage, int32_t count, uint32_t pixel),
    (target, coverage, count, pixel))
PXVIS_VECTOR_KERNEL(
    BlendOver, (uint32_t * target, const uint32_t* source, int32_t count), (target, source, count))

}

#endif
