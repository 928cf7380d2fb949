// What the vector forms of the feedback passes share. They go over a row in tiles of pixels, and
// over a tile in three stages: vectors find the place of each pixel's sample, single loads fetch
// the samples, vectors make the new pixels. Included once for each instruction set.

#if defined(PXVIS_KERNELS_FEEDBACK_TILE_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PXVIS_KERNELS_FEEDBACK_TILE_H
#undef PXVIS_KERNELS_FEEDBACK_TILE_H
#else
#define PXVIS_KERNELS_FEEDBACK_TILE_H
#endif

#include "kernels/FetchPixels.h"

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();

namespace pxvis::kernels::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Pixels = hn::ScalableTag<uint32_t>;
using Numbers = hn::RebindToSigned<Pixels>; // one for each pixel
using Pairs = hn::Repartition<int16_t, Pixels>; // (x, y) for each pixel
using Channels = hn::Repartition<uint16_t, Pixels>; // two of the four, in 16 bits each
using PixelVector = hn::Vec<Pixels>;
using NumberVector = hn::Vec<Numbers>;
using PairVector = hn::Vec<Pairs>;
using ChannelVector = hn::Vec<Channels>;

// Sides up to this: pixel numbers, and coordinates some sides away, fit in the narrow types.
constexpr int32_t largestVectorSide = 8192;

struct FeedbackTile
{
    static constexpr int32_t pixels = 128;
    // The last tile of a row takes up to a vector more, and a Dynamic Transform whole cells of 8.
    static constexpr int32_t capacity = pixels + HWY_MAX_BYTES / 4 + 8;

    HWY_ALIGN int32_t indexes[capacity]; // of the samples in the source
    HWY_ALIGN uint32_t inside[capacity]; // all bits set, or none where the sample is to be black
    HWY_ALIGN uint32_t samples[capacity];
};

HWY_INLINE int32_t VectorPixels()
{
    return static_cast<int32_t>(hn::Lanes(Pixels()));
}

// Pixels of the tile that starts where so many pixels are left: a whole vector of them at least, if
// the row has as many.
HWY_INLINE int32_t TilePixels(int32_t left)
{
    return left < FeedbackTile::pixels + VectorPixels() ? left : FeedbackTile::pixels;
}

// Calls work(first) for whole vectors that cover `count` pixels, a vector's at least. The last may
// overlap the one before.
template <typename Work>
HWY_INLINE void ForEachVector(int32_t count, const Work& work)
{
    const int32_t last = count - VectorPixels();
    for (int32_t first = 0; first < last; first += VectorPixels())
        work(first);
    work(last);
}

// Asks for memory that the next tiles go through in order: processors stop fetching ahead by
// themselves at each page.
template <typename Item>
HWY_INLINE void FetchAhead(const Item* items, int32_t count)
{
    constexpr int32_t bytesAhead = 1024;
    constexpr int32_t lineBytes = 64;
    const uintptr_t first = reinterpret_cast<uintptr_t>(items) + bytesAhead;
    for (uintptr_t i = 0; i < static_cast<uintptr_t>(count) * sizeof(Item); i += lineBytes)
        hwy::Prefetch(reinterpret_cast<const char*>(first + i));
}

// a.x * b.x + a.y * b.y of each pair, wrapped.
HWY_INLINE NumberVector SumOfProducts(PairVector a, PairVector b)
{
    const Numbers d;
    NumberVector rest = hn::Zero(d);
    const NumberVector sum = hn::ReorderWidenMulAccumulate(d, a, b, hn::Zero(d), rest);
    return hn::RearrangeToOddPlusEven(sum, rest);
}

HWY_INLINE PairVector SetPair(int32_t x, int32_t y)
{
    return hn::BitCast(Pairs(),
        hn::Set(Pixels(), static_cast<uint32_t>(x & 0xFFFF) | static_cast<uint32_t>(y) << 16));
}

// A sample softened with four pixels, times the multipliers of the channels.
class Softening
{
public:
    // Blue, green, red, alpha.
    Softening(uint32_t b, uint32_t g, uint32_t r, uint32_t a)
        : m_even(hn::BitCast(Channels(), hn::Set(Pixels(), b | r << 16)))
        , m_odd(hn::BitCast(Channels(), hn::Set(Pixels(), g | a << 16)))
    {
    }

    HWY_INLINE PixelVector Apply(PixelVector sample, const uint32_t* n0, const uint32_t* n1,
        const uint32_t* n2, const uint32_t* n3) const
    {
        const Pixels d;
        const ChannelVector p0 = Load(n0);
        const ChannelVector p1 = Load(n1);
        const ChannelVector p2 = Load(n2);
        const ChannelVector p3 = Load(n3);
        const ChannelVector s = hn::BitCast(Channels(), sample);
        const ChannelVector low = hn::Set(Channels(), 0x00FF);
        const ChannelVector sixteenfold = hn::Set(Channels(), 0x0FF0);
        const ChannelVector even = hn::Add(hn::Add(hn::Add(hn::And(p0, low), hn::And(p1, low)),
                                               hn::Add(hn::And(p2, low), hn::And(p3, low))),
            hn::And(hn::ShiftLeft<4>(s), sixteenfold));
        const ChannelVector odd
            = hn::Add(hn::Add(hn::Add(hn::ShiftRight<8>(p0), hn::ShiftRight<8>(p1)),
                          hn::Add(hn::ShiftRight<8>(p2), hn::ShiftRight<8>(p3))),
                hn::And(hn::ShiftRight<4>(s), sixteenfold));
        const ChannelVector evenProduct = hn::Mul(hn::ShiftRight<4>(even), m_even);
        const ChannelVector oddProduct = hn::Mul(hn::ShiftRight<4>(odd), m_odd);
        return hn::BitCast(d, hn::Or(hn::ShiftRight<8>(evenProduct), hn::AndNot(low, oddProduct)));
    }

private:
    static HWY_INLINE ChannelVector Load(const uint32_t* pixels)
    {
        return hn::BitCast(Channels(), hn::LoadU(Pixels(), pixels));
    }

    ChannelVector m_even;
    ChannelVector m_odd;
};

}

#endif

}

HWY_AFTER_NAMESPACE();

#endif
