#include "kernels/TransformRow.h"

#include "kernels/VectorForm.h"
#include "kernels/Wrapped.h"

#include <algorithm>
#include <array>
#include <utility>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/TransformRowVector.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "kernels/FeedbackTile.h"

HWY_BEFORE_NAMESPACE();

namespace pxvis::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

using scalar::TransformRow;

#else

namespace {

// How far the pixels of a row are moved beyond the map, in coordinates of 16 bits.
struct RowMove
{
    // Before the zoom's steps. At the far ends it stands for anything beyond.
    int32_t x = 0;
    int32_t y = 0;
    // After k pixels the zoom has stepped back max(0, (phase + k * step - 1) >> 10) columns.
    int32_t phase = 0;
    int32_t step = 0;
};

// False if the row can't be told so.
bool FindMove(const TransformPass& pass, const TransformRowStart& start, RowMove& move)
{
    // Map positions are up to 2048 here, or cut off at 32767, which then stays outside; the zoom
    // takes up to largestVectorSide more off. All sums fit in 16 bits, and tell positions below 0
    // from those beyond any side.
    constexpr int32_t farthest = 2 * largestVectorSide;
    constexpr int32_t farthestBelow = -largestVectorSide;
    move.x = std::min(SubtractWrapped(pass.zoomX, pass.scrollX), farthest);
    move.y = std::min(SubtractWrapped(start.offsetY, pass.scrollY), farthest);
    if (pass.map16) {
        move.x = std::max(move.x, farthestBelow);
        move.y = std::max(move.y, farthestBelow);
    } else if (move.x < farthestBelow || move.y < farthestBelow) {
        return false;
    }

    const int64_t count = pass.right - pass.left;
    if (start.phaseX < 0 || start.phaseX > 1023)
        return false;
    if (pass.zoomStepX > 1024) { // the phase grows from step to step
        move.phase = move.step = 1024;
        return start.phaseX + int64_t { pass.zoomStepX } + count * (pass.zoomStepX - 1024)
            <= INT32_MAX;
    }
    if (pass.zoomStepX <= 0) // never a step, unless the phase wraps
        return start.phaseX + count * pass.zoomStepX >= INT32_MIN;
    move.phase = start.phaseX;
    move.step = pass.zoomStepX;
    return true;
}

// Rounds map entries to pixels.
template <typename Entry>
class Rounding;

template <>
class Rounding<uint16_t>
{
public:
    explicit Rounding(int32_t threshold)
        : m_addend(hn::Set(Channels(), static_cast<uint16_t>(std::max(30 - threshold, 0))))
        , m_mask(hn::Set(Channels(), threshold < 31 ? 0xFFFF : 0xFFE0))
    {
    }

    HWY_INLINE PairVector Round(const uint16_t* entries) const
    {
        // (entry + 31 - threshold) >> 5. The average has the sum's 17th bit, and adds 1 itself,
        // which is too much for a threshold of 31 alone.
        const ChannelVector half
            = hn::AverageRound(hn::And(hn::LoadU(Channels(), entries), m_mask), m_addend);
        return hn::BitCast(Pairs(), hn::ShiftRight<4>(half));
    }

private:
    ChannelVector m_addend;
    ChannelVector m_mask;
};

template <>
class Rounding<uint32_t>
{
public:
    explicit Rounding(int32_t threshold)
        : m_threshold(hn::Set(Numbers(), threshold))
        , m_order(hn::SetTableIndices(Numbers(), Order().data()))
    {
    }

    // Positions beyond 32767 become 32767.
    HWY_INLINE PairVector Round(const uint32_t* entries) const
    {
        const PairVector mixed = hn::ReorderDemote2To(
            Pairs(), RoundWide(entries), RoundWide(entries + VectorPixels()));
        return hn::BitCast(Pairs(), hn::TableLookupLanes(hn::BitCast(Numbers(), mixed), m_order));
    }

private:
    using OrderIndexes = std::array<int32_t, HWY_MAX_BYTES / 4>;

    HWY_INLINE NumberVector RoundWide(const uint32_t* entries) const
    {
        const Numbers d;
        const PixelVector position = hn::LoadU(Pixels(), entries);
        const NumberVector fraction = hn::BitCast(d, hn::And(position, hn::Set(Pixels(), 31)));
        const NumberVector up = hn::VecFromMask(d, hn::Gt(fraction, m_threshold));
        return hn::Sub(hn::BitCast(d, hn::ShiftRight<5>(position)), up);
    }

    // Two vectors come into one with their blocks of two pixels in turns.
    static OrderIndexes Order()
    {
        OrderIndexes order {};
        const int32_t half = VectorPixels() / 2;
        for (int32_t i = 0; i < VectorPixels(); ++i)
            order[static_cast<size_t>(i)] = i % half / 2 * 4 + i % 2 + (i < half ? 0 : 2);
        return order;
    }

    NumberVector m_threshold;
    decltype(hn::SetTableIndices(Numbers(), std::declval<const int32_t*>())) m_order;
};

template <typename Entry>
void Row(const TransformPass& pass, const Entry* map, int32_t y, const RowMove& move)
{
    const Pixels d;
    const Numbers dn;
    const int32_t width = pass.width;
    const int64_t rowStart = int64_t { pass.height - 1 - y } * width;
    const Rounding<Entry> rounding(pass.ditherThreshold);
    const Softening softening(
        pass.multiplier[0], pass.multiplier[1], pass.multiplier[2], pass.multiplier[3]);
    const PairVector shift = SetPair(move.x, move.y);
    const PairVector last = SetPair(width - 1, pass.height - 1);
    const PairVector weights = SetPair(1, -width); // rows are bottom-up
    const NumberVector topRow = hn::Set(dn, (pass.height - 1) * width);
    const NumberVector steps = hn::Mul(hn::Iota(dn, 0), hn::Set(dn, move.step));

    FeedbackTile tile;
    int32_t count = 0;
    for (int32_t left = pass.left; left < pass.right; left += count) {
        count = TilePixels(pass.right - left);

        const Entry* entries = map + (int64_t { y } * width + left) * 2;
        FetchAhead(entries, count * 2);
        FetchAhead(pass.target + rowStart + left, count);
        const int32_t phase = move.phase - 1 + (left - pass.left) * move.step;
        ForEachVector(count, [&](int32_t first) HWY_ATTR {
            const NumberVector phases = hn::Add(steps, hn::Set(dn, phase + first * move.step));
            const NumberVector back = hn::Max(hn::ShiftRight<10>(phases), hn::Zero(dn));
            const PairVector at = hn::Sub(
                hn::Add(rounding.Round(entries + first * 2), shift), hn::BitCast(Pairs(), back));
            // Below 0 is far above without a sign.
            const Channels unsignedPairs;
            const PixelVector clamped = hn::BitCast(
                d, hn::Min(hn::BitCast(unsignedPairs, at), hn::BitCast(unsignedPairs, last)));
            const PixelVector inside = hn::VecFromMask(d, hn::Eq(clamped, hn::BitCast(d, at)));
            const NumberVector index = hn::Add(topRow, SumOfProducts(at, weights));
            hn::StoreU(hn::And(index, hn::BitCast(dn, inside)), dn, tile.indexes + first);
            hn::StoreU(inside, d, tile.inside + first);
        });

        FetchPixels(pass.source, tile.indexes, count, tile.samples);

        const uint32_t* around = pass.source + rowStart + left;
        uint32_t* target = pass.target + rowStart + left;
        ForEachVector(count, [&](int32_t first) HWY_ATTR {
            const PixelVector sample
                = hn::And(hn::LoadU(d, tile.samples + first), hn::LoadU(d, tile.inside + first));
            const uint32_t* here = around + first;
            hn::StoreU(softening.Apply(sample, here - 1, here + 1, here + width, here - width), d,
                target + first);
        });
    }
}

}

void TransformRow(const TransformPass& pass, int32_t y, const TransformRowStart& start)
{
    RowMove move;
    if (pass.right - pass.left < VectorPixels() || pass.width > largestVectorSide
        || pass.height > largestVectorSide || !FindMove(pass, start, move))
        scalar::TransformRow(pass, y, start);
    else if (pass.map16)
        Row(pass, pass.map16, y, move);
    else
        Row(pass, pass.map32, y, move);
}

#endif

}

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace pxvis::kernels {

PXVIS_VECTOR_KERNEL(TransformRow,
    (const TransformPass& pass, int32_t y, const TransformRowStart& start), (pass, y, start))

}

#endif
