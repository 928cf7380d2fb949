#include "kernels/I420FromPixels.h"

#include "kernels/VectorForm.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/I420FromPixelsVector.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace pxvis::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

using scalar::I420FromPixels;

#else

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;
using HalfBytes = hn::Half<Bytes>;
using Words = hn::Repartition<uint16_t, Bytes>;
using Pixels = hn::Repartition<uint32_t, Bytes>;
using WordVector = hn::Vec<Words>;
using PixelVector = hn::Vec<Pixels>;

// A pixel's bytes in two vectors of words: blue and red, green and alpha.
WordVector Weights(uint32_t low, uint32_t high)
{
    return hn::BitCast(Words(), hn::Set(Pixels(), high << 16 | low));
}

// The lower words of two vectors of pixels.
WordVector LowerWords(PixelVector first, PixelVector second)
{
    const Words d;
    return hn::ConcatEven(d, hn::BitCast(d, second), hn::BitCast(d, first));
}

// The upper half of each word: whole steps.
hn::Vec<Bytes> Steps(WordVector first, WordVector second)
{
    const Bytes d;
    return hn::ConcatOdd(d, hn::BitCast(d, second), hn::BitCast(d, first));
}

// Without the base, in the lower word.
PixelVector LumaSum(PixelVector pixels)
{
    const Words d;
    const Pixels p;
    const WordVector words = hn::BitCast(d, pixels);
    const WordVector blueRed = hn::ShiftLeft<8>(words);
    const WordVector green = hn::AndNot(hn::Set(d, uint16_t { 0xFF }), words);
    const WordVector sum = hn::Add(hn::MulHigh(blueRed, Weights(i420::lumaBlue, i420::lumaRed)),
        hn::MulHigh(green, Weights(i420::lumaGreen, 0)));
    const PixelVector pair = hn::BitCast(p, sum);
    return hn::BitCast(p, hn::Add(sum, hn::BitCast(d, hn::ShiftRight<16>(pair))));
}

void StoreLuma(uint8_t* target, const uint32_t* source)
{
    const Pixels p;
    const size_t lanes = hn::Lanes(p);
    const WordVector base = hn::Set(Words(), static_cast<uint16_t>(i420::lumaBase));
    const WordVector first
        = LowerWords(LumaSum(hn::LoadU(p, source)), LumaSum(hn::LoadU(p, source + lanes)));
    const WordVector second = LowerWords(
        LumaSum(hn::LoadU(p, source + 2 * lanes)), LumaSum(hn::LoadU(p, source + 3 * lanes)));
    hn::StoreU(Steps(hn::Add(first, base), hn::Add(second, base)), Bytes(), target);
}

// Colours of two by two pixels, 32 * 8 times as large.
struct Sums
{
    WordVector blueRed;
    WordVector green;
};

void AddPixels(Sums& sums, PixelVector pixels)
{
    const Words d;
    const WordVector words = hn::BitCast(d, pixels);
    sums.blueRed = hn::Add(sums.blueRed, hn::And(words, hn::Set(d, uint16_t { 0xFF })));
    sums.green = hn::Add(sums.green, hn::ShiftRight<8>(words));
}

// Of the two vectors of pixels from `upper` and `lower` on, and the pixels before them.
Sums WeighedSums(const uint32_t* upper, const uint32_t* lower)
{
    const Pixels p;
    const Words d;
    const size_t lanes = hn::Lanes(p);
    Sums own { hn::Zero(d), hn::Zero(d) };
    Sums beside { hn::Zero(d), hn::Zero(d) };
    const auto addRow = [&](const uint32_t* row) HWY_ATTR {
        const PixelVector first = hn::LoadU(p, row);
        const PixelVector second = hn::LoadU(p, row + lanes);
        AddPixels(own, hn::ConcatEven(p, second, first));
        AddPixels(beside, hn::ConcatOdd(p, second, first));
        AddPixels(beside, hn::ConcatEven(p, hn::LoadU(p, row + lanes - 1), hn::LoadU(p, row - 1)));
    };
    addRow(upper);
    addRow(lower);
    return { hn::ShiftLeft<5>(hn::Add(hn::Add(own.blueRed, own.blueRed), beside.blueRed)),
        hn::ShiftLeft<5>(hn::Add(hn::Add(own.green, own.green), beside.green)) };
}

// Without the base, in the lower words; differences may wrap.
PixelVector CbSum(const Sums& sums)
{
    const Words d;
    const WordVector part
        = hn::Sub(hn::MulHigh(sums.blueRed, Weights(i420::chromaOwn, i420::cbRed)),
            hn::MulHigh(sums.green, Weights(i420::cbGreen, 0)));
    const PixelVector red = hn::ShiftRight<16>(hn::BitCast(Pixels(), part));
    return hn::BitCast(Pixels(), hn::Sub(part, hn::BitCast(d, red)));
}

PixelVector CrSum(const Sums& sums)
{
    const Words d;
    const WordVector part
        = hn::Add(hn::MulHigh(sums.blueRed, Weights(i420::crBlue, i420::chromaOwn)),
            hn::MulHigh(sums.green, Weights(i420::crGreen, 0)));
    const PixelVector red = hn::ShiftRight<16>(hn::BitCast(Pixels(), part));
    return hn::BitCast(Pixels(), hn::Sub(hn::BitCast(d, red), part));
}

void StoreChroma(uint8_t* target, PixelVector first, PixelVector second)
{
    const WordVector base = hn::Set(Words(), static_cast<uint16_t>(i420::chromaBase));
    const WordVector sums = hn::Add(LowerWords(first, second), base);
    hn::StoreU(hn::LowerHalf(HalfBytes(), Steps(sums, sums)), HalfBytes(), target);
}

void StoreBlock(const I420Rows& target, const uint32_t* upper, const uint32_t* lower, int32_t x)
{
    StoreLuma(target.upperLuma + x, upper + x);
    StoreLuma(target.lowerLuma + x, lower + x);
    const size_t lanes = hn::Lanes(Pixels());
    const Sums first = WeighedSums(upper + x, lower + x);
    const Sums second = WeighedSums(upper + x + 2 * lanes, lower + x + 2 * lanes);
    StoreChroma(target.cb + x / 2, CbSum(first), CbSum(second));
    StoreChroma(target.cr + x / 2, CrSum(first), CrSum(second));
}

}

void I420FromPixels(
    const I420Rows& target, const uint32_t* upper, const uint32_t* lower, int32_t width)
{
    const auto block = static_cast<int32_t>(hn::Lanes(Bytes()));
    // The first pair has no pixel before it.
    constexpr int32_t pair = 2;
    if (width < block + pair) {
        scalar::I420FromPixels(target, upper, lower, width);
        return;
    }
    scalar::I420FromPixels(target, upper, lower, pair);
    int32_t x = pair;
    for (; x + block <= width; x += block)
        StoreBlock(target, upper, lower, x);
    if (x < width) // some pixels twice
        StoreBlock(target, upper, lower, width - block);
}

#endif

}

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace pxvis::kernels {

PXVIS_VECTOR_KERNEL(I420FromPixels,
    (const I420Rows& target, const uint32_t* upper, const uint32_t* lower, int32_t width),
    (target, upper, lower, width))

}

#endif
