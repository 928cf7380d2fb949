#include "kernels/Stretch.h"

#include "kernels/VectorForm.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/StretchVector.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace pxvis::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

using scalar::StretchRows;

#else

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<uint16_t>;
using Pixels = hn::Repartition<uint32_t, Words>;
using WordVector = hn::Vec<Words>;
using PixelVector = hn::Vec<Pixels>;

// Columns of a strip. Rows should stay in a near cache, but short pieces of many rows are read
// slowly.
constexpr int32_t most = 2048;
constexpr int32_t mostLanes = 16; // pixels
constexpr int32_t room = most + mostLanes; // the last vector's rest

// A source row mixed along x, in 1/256, 16 bits for each byte of a pixel.
struct alignas(64) MixedRow
{
    uint32_t even[room]; // bytes 0 and 2
    uint32_t odd[room]; // bytes 1 and 3
    int32_t index; // of the source row; -1: none yet
};

// A strip of target columns: one after the other, so that their places in the source are worked out
// once, and that neighbouring target rows share the rows that are mixed.
struct alignas(64) Strip
{
    // Of the right one of two source pixels, 0 to 256, in both halves.
    uint32_t weights[room];
    // Of the left one; from the vector's base on where the source isn't wider than the target, for
    // there a vector's pixels come from as many source pixels or fewer.
    int32_t index[room];
    int32_t base[room];
    int32_t count; // columns, up to whole vectors
    bool isNear; // such indices
    MixedRow rows[2];
};

void Prepare(
    Strip& strip, const StretchAxis& axis, int32_t left, int32_t count, int32_t sourceWidth)
{
    const auto lanes = static_cast<int32_t>(hn::Lanes(Pixels()));
    strip.count = (count + lanes - 1) / lanes * lanes;
    strip.rows[0].index = -1;
    strip.rows[1].index = -1;
    for (int32_t i = 0; i < strip.count; ++i) {
        const StretchSample sample = axis.At(left + i);
        // At the far edge both pixels are the last one: the right one of the last two.
        const bool isLast = sample.index == sourceWidth - 1;
        strip.index[i] = sample.index - (isLast ? 1 : 0);
        strip.weights[i] = (isLast ? 256 : sample.weightOfNext) * 0x10001u;
    }
    if (!strip.isNear)
        return;
    for (int32_t i = 0; i < strip.count; i += lanes) {
        const int32_t last = sourceWidth - 1 - lanes; // two vectors can be loaded from here
        strip.base[i] = strip.index[i] < last ? strip.index[i] : last;
        for (int32_t k = i; k < i + lanes; ++k)
            strip.index[k] -= strip.base[i];
    }
}

// left * (256 - weight) + right * weight. All is below 2^16; the difference may wrap.
void MixBeside(MixedRow& row, const Strip& strip, int32_t i, PixelVector left, PixelVector right)
{
    const Pixels d;
    const Words words;
    const WordVector low = hn::Set(words, uint16_t { 0xFF });
    const WordVector weights = hn::BitCast(words, hn::Load(d, strip.weights + i));
    const WordVector a = hn::BitCast(words, left);
    const WordVector b = hn::BitCast(words, right);
    const WordVector even = hn::Sub(hn::And(b, low), hn::And(a, low));
    const WordVector odd = hn::Sub(hn::ShiftRight<8>(b), hn::ShiftRight<8>(a));
    hn::Store(
        hn::BitCast(d, hn::Add(hn::ShiftLeft<8>(a), hn::Mul(even, weights))), d, row.even + i);
    hn::Store(hn::BitCast(d, hn::Add(hn::AndNot(low, a), hn::Mul(odd, weights))), d, row.odd + i);
}

void MixAlong(MixedRow& row, const Strip& strip, const uint32_t* source)
{
    const Pixels d;
    const auto lanes = static_cast<int32_t>(hn::Lanes(d));
    const int32_t count = strip.count;
    if (strip.isNear) {
        for (int32_t i = 0; i < count; i += lanes) {
            const uint32_t* base = source + strip.base[i];
            const auto index = hn::SetTableIndices(d, strip.index + i);
            MixBeside(row, strip, i, hn::TableLookupLanes(hn::LoadU(d, base), index),
                hn::TableLookupLanes(hn::LoadU(d, base + 1), index));
        }
        return;
    }
    // Plain loads of two pixels each; vectors gather no faster.
    alignas(64) uint32_t pairs[2 * room];
    for (int32_t i = 0; i < count; ++i)
        std::memcpy(pairs + 2 * i, source + strip.index[i], 2 * sizeof *source);
    for (int32_t i = 0; i < count; i += lanes) {
        const PixelVector lower = hn::Load(d, pairs + 2 * i);
        const PixelVector upper = hn::Load(d, pairs + 2 * i + lanes);
        MixBeside(row, strip, i, hn::ConcatEven(d, upper, lower), hn::ConcatOdd(d, upper, lower));
    }
}

const MixedRow& RowOf(Strip& strip, int32_t index, const uint32_t* source, ptrdiff_t sourceStride)
{
    MixedRow& row = strip.rows[index % 2]; // the next target row finds it there
    if (row.index != index) {
        MixAlong(row, strip, source + index * sourceStride);
        row.index = index;
    }
    return row;
}

// (upper * (256 - weight) + lower * weight + 2^15) / 2^8 in 16 bits, of which the upper 8 count:
// the mixtures of the upper bytes, of the lower ones, and what these carry. All sums stay below
// 2^16, as the whole does below 2^24, and differences may wrap.
WordVector MixDown(const uint32_t* upperRow, const uint32_t* lowerRow, WordVector weight)
{
    const Pixels d;
    const Words words;
    const WordVector low = hn::Set(words, uint16_t { 0xFF });
    const WordVector upper = hn::BitCast(words, hn::Load(d, upperRow));
    const WordVector lower = hn::BitCast(words, hn::Load(d, lowerRow));
    const WordVector highMoved
        = hn::Mul(hn::Sub(hn::ShiftRight<8>(lower), hn::ShiftRight<8>(upper)), weight);
    const WordVector lowMoved = hn::Mul(hn::Sub(hn::And(lower, low), hn::And(upper, low)), weight);
    const WordVector high = hn::Add(hn::AndNot(low, upper), highMoved);
    const WordVector carried = hn::ShiftRight<8>(hn::Add(hn::ShiftLeft<8>(upper), lowMoved));
    return hn::Add(high, hn::Add(carried, hn::Set(words, uint16_t { 0x80 })));
}

void StoreMixed(uint32_t* target, const MixedRow& upper, const MixedRow& lower, int32_t count,
    uint32_t weightOfLower)
{
    const Pixels d;
    const Words words;
    const WordVector low = hn::Set(words, uint16_t { 0xFF });
    const WordVector weight = hn::Set(words, static_cast<uint16_t>(weightOfLower));
    const auto mixed = [&](int32_t i) HWY_ATTR {
        const WordVector even = MixDown(upper.even + i, lower.even + i, weight);
        const WordVector odd = MixDown(upper.odd + i, lower.odd + i, weight);
        return hn::BitCast(d, hn::Or(hn::ShiftRight<8>(even), hn::AndNot(low, odd)));
    };
    const auto lanes = static_cast<int32_t>(hn::Lanes(d));
    int32_t x = 0;
    for (; x + lanes <= count; x += lanes)
        hn::StoreU(mixed(x), d, target + x);
    if (x < count) {
        alignas(64) uint32_t rest[mostLanes];
        hn::Store(mixed(x), d, rest);
        std::memcpy(target + x, rest, static_cast<size_t>(count - x) * sizeof *target);
    }
}

}

void StretchRows(uint32_t* target, ptrdiff_t targetStride, int32_t targetWidth,
    int32_t targetHeight, const uint32_t* source, ptrdiff_t sourceStride, int32_t sourceWidth,
    int32_t sourceHeight, int32_t first, int32_t last)
{
    if (targetWidth == sourceWidth && targetHeight == sourceHeight) {
        for (int32_t y = first; y < last; ++y)
            std::memcpy(target + (y - first) * targetStride, source + y * sourceStride,
                static_cast<size_t>(targetWidth) * sizeof *target);
        return;
    }
    if (sourceWidth == 1) {
        scalar::StretchRows(target, targetStride, targetWidth, targetHeight, source, sourceStride,
            sourceWidth, sourceHeight, first, last);
        return;
    }
    const StretchAxis columns(targetWidth, sourceWidth);
    const StretchAxis rows(targetHeight, sourceHeight);
    Strip strip;
    strip.isNear
        = sourceWidth <= targetWidth && sourceWidth > static_cast<int32_t>(hn::Lanes(Pixels()));
    for (int32_t left = 0; left < targetWidth; left += most) {
        const int32_t count = targetWidth - left < most ? targetWidth - left : most;
        Prepare(strip, columns, left, count, sourceWidth);
        for (int32_t y = first; y < last; ++y) {
            const StretchSample v = rows.At(y);
            const MixedRow& upper = RowOf(strip, v.index, source, sourceStride);
            const MixedRow& lower = RowOf(strip, v.next, source, sourceStride);
            StoreMixed(
                target + (y - first) * targetStride + left, upper, lower, count, v.weightOfNext);
        }
    }
}

#endif

}

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace pxvis::kernels {

PXVIS_VECTOR_KERNEL(StretchRows,
    (uint32_t * target, ptrdiff_t targetStride, int32_t targetWidth, int32_t targetHeight,
        const uint32_t* source, ptrdiff_t sourceStride, int32_t sourceWidth, int32_t sourceHeight,
        int32_t first, int32_t last),
    (target, targetStride, targetWidth, targetHeight, source, sourceStride, sourceWidth,
        sourceHeight, first, last))

}

#endif
