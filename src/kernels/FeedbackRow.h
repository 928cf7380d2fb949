// What the vector forms of the Super Transform and the Dynamic Transform share beside the tile:
// positions that wrap around or are clipped, and colours that are faded and added to. Included once
// for each instruction set.

#if defined(PXVIS_KERNELS_FEEDBACK_ROW_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PXVIS_KERNELS_FEEDBACK_ROW_H
#undef PXVIS_KERNELS_FEEDBACK_ROW_H
#else
#define PXVIS_KERNELS_FEEDBACK_ROW_H
#endif

#include "kernels/FeedbackPixel.h"
#include "kernels/FeedbackTile.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();

namespace pxvis::kernels::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR

namespace {

// Whether a row of the picture can be done by vectors at all.
inline bool FitsVectors(const FeedbackPass& pass)
{
    // Of smaller pictures SourceIndexes can't tell the remainder.
    constexpr int32_t fewestPixels = 256;
    return pass.width - 2 >= VectorPixels() && pass.width <= largestVectorSide
        && pass.height <= largestVectorSide && pass.width * pass.height >= fewestPixels;
}

// SampleSource's place in the source, of pixels in vectors of D, whose lanes are int32_t.
template <typename D, bool clips>
class SourceIndexes
{
public:
    using Vector = hn::Vec<D>;

    explicit SourceIndexes(const FeedbackPass& pass)
        : m_topRow(hn::Set(D(), (pass.height - 1) * pass.width))
        , m_width(hn::Set(D(), pass.width))
        , m_lastColumn(hn::Set(Unsigned(), static_cast<uint32_t>(pass.width - 1)))
        , m_lastRow(hn::Set(Unsigned(), static_cast<uint32_t>(pass.height - 1)))
        , m_count(hn::Set(D(), pass.width * pass.height))
        , m_reciprocal(hn::Set(Floats(), 1.0f / static_cast<float>(pass.width * pass.height)))
    {
    }

    // Any x and y.
    HWY_INLINE void Store(Vector x, Vector y, FeedbackTile& tile, int32_t first) const
    {
        const D d;
        const Vector index = hn::Sub(hn::Add(m_topRow, x), hn::Mul(y, m_width));
        if constexpr (clips) {
            // Below 0 is far above without a sign.
            const Unsigned du;
            const auto ux = hn::BitCast(du, x);
            const auto uy = hn::BitCast(du, y);
            const auto inside = hn::And(
                hn::Eq(hn::Min(ux, m_lastColumn), ux), hn::Eq(hn::Min(uy, m_lastRow), uy));
            const auto mask = hn::VecFromMask(du, inside);
            hn::StoreU(hn::And(hn::BitCast(d, mask), index), d, tile.indexes + first);
            hn::StoreU(mask, du, tile.inside + first);
        } else {
            // A number of bytes in 32 bits is one of pixels in 30.
            const Vector wrapped = hn::And(index, hn::Set(d, 0x3FFFFFFF));
            const bool inside = hn::AllTrue(d, hn::Lt(wrapped, m_count));
            hn::StoreU(HWY_LIKELY(inside) ? wrapped : Remainder(wrapped), d, tile.indexes + first);
        }
    }

private:
    using Unsigned = hn::RebindToUnsigned<D>;
    using Floats = hn::RebindToFloat<D>;

    // Of pixel numbers below 2^30 in the picture. The quotient is off by one at most: four
    // roundings to 24 bits, that of the count among them, make less than 256 / count.
    HWY_INLINE Vector Remainder(Vector number) const
    {
        const D d;
        const Vector quotient
            = hn::ConvertTo(d, hn::Mul(hn::ConvertTo(Floats(), number), m_reciprocal));
        const Vector rest = hn::Sub(number, hn::Mul(quotient, m_count));
        // What is below 0 without a sign is larger than what it becomes.
        const Unsigned du;
        const auto raised = hn::Min(hn::BitCast(du, rest), hn::BitCast(du, hn::Add(rest, m_count)));
        return hn::BitCast(d, hn::Min(raised, hn::Sub(raised, hn::BitCast(du, m_count))));
    }

    Vector m_topRow; // rows are bottom-up
    Vector m_width;
    hn::Vec<Unsigned> m_lastColumn;
    hn::Vec<Unsigned> m_lastRow;
    Vector m_count;
    hn::Vec<Floats> m_reciprocal;
};

// RoundToPixel of any positions.
template <typename D>
class PixelRounding
{
public:
    using Vector = hn::Vec<D>;

    explicit PixelRounding(int32_t threshold)
        : m_threshold(hn::Set(D(), threshold))
    {
    }

    HWY_INLINE Vector Round(Vector position) const
    {
        const D d;
        const auto up = hn::Gt(hn::And(position, hn::Set(d, 31)), m_threshold);
        return hn::Sub(hn::ShiftRight<5>(position), hn::VecFromMask(d, up));
    }

private:
    Vector m_threshold;
};

// FeedbackPixel of samples.
template <bool clips>
class FeedbackColors
{
public:
    explicit FeedbackColors(const FeedbackPass& pass)
        : m_softening(pass.multiplier[0], pass.multiplier[1], pass.multiplier[2], 0)
        , m_width(pass.width)
    {
        uint32_t more = 0;
        uint32_t less = 0;
        for (int channel = 0; channel < 3; ++channel) {
            const int32_t summand = pass.summand[channel];
            more |= static_cast<uint32_t>(std::clamp(summand, 0, 255)) << channel * 8;
            less |= static_cast<uint32_t>(std::clamp(-summand, 0, 255)) << channel * 8;
        }
        m_more = hn::BitCast(Bytes(), hn::Set(Pixels(), more));
        m_less = hn::BitCast(Bytes(), hn::Set(Pixels(), less));
    }

    // `around` is the source at the first pixel, and `skip` the pixels of the tile before it.
    HWY_INLINE void Store(const FeedbackTile& tile, int32_t skip, const uint32_t* around,
        uint32_t* target, int32_t count) const
    {
        const Pixels d;
        ForEachVector(count, [&](int32_t first) HWY_ATTR {
            PixelVector sample = hn::LoadU(d, tile.samples + skip + first);
            if constexpr (clips)
                sample = hn::And(sample, hn::LoadU(d, tile.inside + skip + first));
            const uint32_t* above = around + first + m_width;
            const uint32_t* below = around + first - m_width;
            const PixelVector faded
                = m_softening.Apply(sample, above - 1, above + 1, below - 1, below + 1);
            const auto added = hn::SaturatedAdd(hn::BitCast(Bytes(), faded), m_more);
            hn::StoreU(hn::BitCast(d, hn::SaturatedSub(added, m_less)), d, target + first);
        });
    }

private:
    using Bytes = hn::Repartition<uint8_t, Pixels>;

    Softening m_softening;
    hn::Vec<Bytes> m_more; // one of the two is 0
    hn::Vec<Bytes> m_less;
    ptrdiff_t m_width;
};

}

#endif

}

HWY_AFTER_NAMESPACE();

#endif
