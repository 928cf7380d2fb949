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
using Bytes = hn::Repartition<uint8_t, Words>;
using WordVector = hn::Vec<Words>;

constexpr int32_t most = 512; // columns of a strip: its rows stay in the nearest cache
constexpr int32_t mostVectorBytes = 64;
constexpr int32_t room = most + mostVectorBytes / 4; // the last vector's rest

// A strip of target columns: one after the other, so that their places in the source are worked out
// once, and that neighbouring target rows share what is mixed along a source row.
struct Strip
{
    int32_t count; // columns, up to whole vectors
    int32_t index[room]; // of the left of two source pixels
    // Of the right one, 0 to 256, one for each byte of a pixel.
    alignas(mostVectorBytes) uint16_t weights[4 * room];
    // Two source rows mixed along x, in 1/256.
    alignas(mostVectorBytes) uint16_t rows[2][4 * room];
    int32_t rowIndex[2];
};

void Prepare(
    Strip& strip, const StretchAxis& axis, int32_t left, int32_t count, int32_t sourceWidth)
{
    const auto lanes = static_cast<int32_t>(hn::Lanes(Bytes())) / 4;
    strip.count = (count + lanes - 1) / lanes * lanes;
    strip.rowIndex[0] = -1;
    strip.rowIndex[1] = -1;
    for (int32_t i = 0; i < strip.count; ++i) {
        const StretchSample sample = axis.At(left + i);
        // At the far edge both pixels are the last one: the right one of the last two.
        const bool isLast = sample.index == sourceWidth - 1;
        strip.index[i] = sample.index - (isLast ? 1 : 0);
        for (int32_t byte = 0; byte < 4; ++byte)
            strip.weights[4 * i + byte] = static_cast<uint16_t>(isLast ? 256 : sample.weightOfNext);
    }
}

// Mixes the strip's part of a source row.
void MixAlong(const Strip& strip, uint16_t* row, const uint32_t* source)
{
    // Plain loads of two pixels each; vectors gather no faster.
    for (int32_t i = 0; i < strip.count; ++i)
        std::memcpy(row + 4 * i, source + strip.index[i], 2 * sizeof *source);

    const Words d;
    const Bytes bytes;
    alignas(16) static constexpr uint8_t pairs[16]
        = { 0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15 };
    const auto sideBySide = hn::LoadDup128(bytes, pairs);
    const WordVector low = hn::Set(d, uint16_t { 0xFF });
    const auto lanes = static_cast<int32_t>(hn::Lanes(d));
    for (int32_t i = 0; i < 4 * strip.count; i += lanes) {
        const WordVector pair = hn::BitCast(
            d, hn::TableLookupBytes(hn::BitCast(bytes, hn::Load(d, row + i)), sideBySide));
        // left * 256 + (right - left) * weight
        const WordVector difference = hn::Sub(hn::ShiftRight<8>(pair), hn::And(pair, low));
        const WordVector moved = hn::Mul(difference, hn::Load(d, strip.weights + i));
        hn::Store(hn::Add(hn::ShiftLeft<8>(pair), moved), d, row + i);
    }
}

const uint16_t* MixedRow(
    Strip& strip, int32_t slot, int32_t index, const uint32_t* source, ptrdiff_t sourceStride)
{
    if (strip.rowIndex[slot] != index) {
        MixAlong(strip, strip.rows[slot], source + index * sourceStride);
        strip.rowIndex[slot] = index;
    }
    return strip.rows[slot];
}

// (upper * (256 - weight) + lower * weight + 2^15) / 2^16 in 16 bits: the mixtures of the upper
// bytes, of the lower ones, and what these carry. All sums stay below 2^16, as the whole does below
// 2^24, and differences may wrap.
WordVector MixDown(WordVector upper, WordVector lower, WordVector weight)
{
    const Words d;
    const WordVector low = hn::Set(d, uint16_t { 0xFF });
    const WordVector upperHigh = hn::ShiftRight<8>(upper);
    const WordVector upperLow = hn::And(upper, low);
    const WordVector highMoved = hn::Mul(hn::Sub(hn::ShiftRight<8>(lower), upperHigh), weight);
    const WordVector lowMoved = hn::Mul(hn::Sub(hn::And(lower, low), upperLow), weight);
    const WordVector high = hn::Add(hn::AndNot(low, upper), highMoved);
    const WordVector carried = hn::ShiftRight<8>(hn::Add(hn::ShiftLeft<8>(upper), lowMoved));
    return hn::ShiftRight<8>(hn::Add(high, hn::Add(carried, hn::Set(d, uint16_t { 0x80 }))));
}

void StoreMixed(uint32_t* target, const uint16_t* upper, const uint16_t* lower, int32_t count,
    uint32_t weightOfLower)
{
    const Words d;
    const Bytes bytes;
    const hn::Half<Bytes> half;
    const WordVector weight = hn::Set(d, static_cast<uint16_t>(weightOfLower));
    const auto lanes = static_cast<int32_t>(hn::Lanes(d));
    const auto mixed = [&](int32_t i) HWY_ATTR {
        return MixDown(hn::Load(d, upper + i), hn::Load(d, lower + i), weight);
    };
    const int32_t pixels = lanes / 2; // a vector of bytes
    int32_t x = 0;
    for (; x + pixels <= count; x += pixels) {
        const auto both = hn::ConcatEven(
            bytes, hn::BitCast(bytes, mixed(4 * x + lanes)), hn::BitCast(bytes, mixed(4 * x)));
        hn::StoreU(both, bytes, reinterpret_cast<uint8_t*>(target + x));
    }
    for (; x < count; x += pixels / 2) {
        alignas(mostVectorBytes) uint32_t rest[mostVectorBytes / 4];
        const auto even = hn::ConcatEven(
            bytes, hn::BitCast(bytes, mixed(4 * x)), hn::BitCast(bytes, mixed(4 * x)));
        hn::Store(hn::LowerHalf(half, even), half, reinterpret_cast<uint8_t*>(rest));
        const int32_t left = count - x < pixels / 2 ? count - x : pixels / 2;
        std::memcpy(target + x, rest, static_cast<size_t>(left) * sizeof *target);
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
    for (int32_t left = 0; left < targetWidth; left += most) {
        const int32_t count = targetWidth - left < most ? targetWidth - left : most;
        Prepare(strip, columns, left, count, sourceWidth);
        for (int32_t y = first; y < last; ++y) {
            const StretchSample v = rows.At(y);
            // A row's slot is its parity: the next row down finds it there.
            const uint16_t* upper = MixedRow(strip, v.index % 2, v.index, source, sourceStride);
            const uint16_t* lower = MixedRow(strip, v.next % 2, v.next, source, sourceStride);
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
