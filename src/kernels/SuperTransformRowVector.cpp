#include "kernels/SuperTransformRow.h"

#include "kernels/VectorForm.h"

#include <algorithm>
#include <cstdlib>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/SuperTransformRowVector.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "kernels/FeedbackRow.h"

HWY_BEFORE_NAMESPACE();

namespace pxvis::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

using scalar::SuperTransformRow;

#else

namespace {

struct Position
{
    NumberVector x;
    NumberVector y;
};

// The numbers wrap in 32 bits and are then divided by 1024.
HWY_INLINE NumberVector Scaled(NumberVector number, NumberVector factor)
{
    return hn::ShiftRight<10>(hn::Mul(number, factor));
}

// Turns map entries round the centre.
template <typename Entry>
class Rotation;

template <>
class Rotation<int16_t>
{
public:
    explicit Rotation(const SuperTransformPass& pass)
        : m_toX(SetPair(pass.cosine, -pass.sine))
        , m_toY(SetPair(pass.sine, pass.cosine))
    {
    }

    HWY_INLINE Position Turn(const int16_t* entries) const
    {
        const PairVector pair = hn::LoadU(Pairs(), entries);
        return { hn::ShiftRight<10>(SumOfProducts(pair, m_toX)),
            hn::ShiftRight<10>(SumOfProducts(pair, m_toY)) };
    }

private:
    PairVector m_toX;
    PairVector m_toY;
};

template <>
class Rotation<int32_t>
{
public:
    explicit Rotation(const SuperTransformPass& pass)
        : m_sine(hn::Set(Numbers(), pass.sine))
        , m_cosine(hn::Set(Numbers(), pass.cosine))
        , m_turns(pass.sine != 0 || pass.cosine != 1024)
    {
    }

    HWY_INLINE Position Turn(const int32_t* entries) const
    {
        NumberVector x;
        NumberVector y;
        hn::LoadInterleaved2(Numbers(), entries, x, y);
        if (!m_turns) // but for the bits that the product loses
            return { hn::ShiftRight<10>(hn::ShiftLeft<10>(x)),
                hn::ShiftRight<10>(hn::ShiftLeft<10>(y)) };
        return { hn::ShiftRight<10>(hn::Sub(hn::Mul(x, m_cosine), hn::Mul(y, m_sine))),
            hn::ShiftRight<10>(hn::Add(hn::Mul(y, m_cosine), hn::Mul(x, m_sine))) };
    }

private:
    NumberVector m_sine;
    NumberVector m_cosine;
    bool m_turns;
};

template <typename Entry, bool clips>
void Row(const SuperTransformPass& pass, const Entry* map, int32_t y)
{
    const Numbers d;
    const Rotation<Entry> rotation(pass);
    // What a number that is a product of 32 bits over 1024 isn't changed by.
    const bool stretches = pass.factorX != 1024 || pass.factorY != 1024;
    const NumberVector factorX = hn::Set(d, pass.factorX);
    const NumberVector factorY = hn::Set(d, pass.factorY);
    // From the top left, and rounded by the shift alone.
    const int32_t up = 31 - pass.ditherThreshold;
    const NumberVector moveX = hn::Set(d, (pass.width + 1) / 2 * 32 - pass.scrollX + up);
    const NumberVector moveY = hn::Set(d, (pass.height + 1) / 2 * 32 + pass.scrollY + up);
    const SourceIndexes<Numbers, clips> indexes(pass);
    const FeedbackColors<clips> colors(pass);
    const ptrdiff_t rowStart = ptrdiff_t { pass.height - 1 - y } * pass.width;

    FeedbackTile tile;
    const int32_t right = pass.width - 1;
    int32_t count = 0;
    for (int32_t left = 1; left < right; left += count) {
        count = TilePixels(right - left);
        const Entry* entries = map + (ptrdiff_t { y } * pass.width + left) * 2;
        FetchAhead(entries, count * 2);
        FetchAhead(pass.target + rowStart + left, count);
        ForEachVector(count, [&](int32_t first) HWY_ATTR {
            Position at = rotation.Turn(entries + first * 2);
            if (stretches)
                at = { Scaled(at.x, factorX), Scaled(at.y, factorY) };
            indexes.Store(hn::ShiftRight<5>(hn::Add(at.x, moveX)),
                hn::ShiftRight<5>(hn::Add(at.y, moveY)), tile, first);
        });
        FetchPixels(pass.source, tile.indexes, count, tile.samples);
        colors.Store(tile, 0, pass.source + rowStart + left, pass.target + rowStart + left, count);
    }
}

template <typename Entry>
void Row(const SuperTransformPass& pass, const Entry* map, int32_t y)
{
    if (pass.clips)
        Row<Entry, true>(pass, map, y);
    else
        Row<Entry, false>(pass, map, y);
}

// Whether the numbers fit the narrow arithmetic: the rotation in pairs, and sums with the scroll.
bool FitsVectors(const SuperTransformPass& pass)
{
    constexpr int32_t farthest = 1 << 30;
    const auto fitsPair
        = [](int32_t number) { return number >= -INT16_MAX && number <= INT16_MAX; };
    return FitsVectors(static_cast<const FeedbackPass&>(pass)) && pass.scrollX >= -farthest
        && pass.scrollX <= farthest && pass.scrollY >= -farthest && pass.scrollY <= farthest
        && (!pass.map16 || (fitsPair(pass.sine) && fitsPair(pass.cosine)));
}

}

void SuperTransformRow(const SuperTransformPass& pass, int32_t y)
{
    if (!FitsVectors(pass))
        scalar::SuperTransformRow(pass, y);
    else if (pass.map16)
        Row(pass, pass.map16, y);
    else
        Row(pass, pass.map32, y);
}

#endif

}

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace pxvis::kernels {

PXVIS_VECTOR_KERNEL(SuperTransformRow, (const SuperTransformPass& pass, int32_t y), (pass, y))

}

#endif
