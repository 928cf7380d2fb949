// Sines, cosines and arc cosines for results in single precision. Included behind MathsVector.inl,
// in the same namespace.

// What Maths gives, rounded. Only half of its bits are needed for that: a short polynomial tells
// them, unless they are so near to the middle between two results that its error may matter. Then
// the vector is left to Maths, so that there is no other bit (the first step of A. Ziv's "Fast
// Evaluation of Elementary Mathematical Functions with Correctly Rounded Last Bit", 1991).
struct SingleMaths
{
    using Floats = hn::ScalableTag<float>;
    using Single = hn::Vec<Floats>;

    HWY_INLINE static void SinCos(Single x, Single& sine, Single& cosine)
    {
        const F low = Widened<0>(x);
        const F high = Widened<1>(x);
        F sines[2];
        F cosines[2];
        const M lowCertain = ShortSinCos(low, sines[0], cosines[0]);
        const M highCertain = ShortSinCos(high, sines[1], cosines[1]);
        if (HWY_UNLIKELY(!hn::AllTrue(Doubles(), hn::And(lowCertain, highCertain)))) {
            Maths::SinCos(low, sines[0], cosines[0]);
            Maths::SinCos(high, sines[1], cosines[1]);
        }
        sine = Rounded(sines[0], sines[1]);
        cosine = Rounded(cosines[0], cosines[1]);
    }

    HWY_INLINE static Single Acos(Single x)
    {
        const F low = Widened<0>(x);
        const F high = Widened<1>(x);
        F angles[2];
        const M lowCertain = ShortAcos(low, angles[0]);
        const M highCertain = ShortAcos(high, angles[1]);
        if (HWY_UNLIKELY(!hn::AllTrue(Doubles(), hn::And(lowCertain, highCertain)))) {
            angles[0] = Maths::Acos(low);
            angles[1] = Maths::Acos(high);
        }
        return Rounded(angles[0], angles[1]);
    }

    template <int half>
    HWY_INLINE static VectorLanes::F Widened(Single x)
    {
        if constexpr (half == 0)
            return hn::PromoteTo(Doubles(), hn::LowerHalf(hn::Half<Floats>(), x));
        else
            return hn::PromoteTo(Doubles(), hn::UpperHalf(hn::Half<Floats>(), x));
    }

    HWY_INLINE static Single Rounded(VectorLanes::F low, VectorLanes::F high)
    {
        const hn::Half<Floats> half;
        return hn::Combine(Floats(), hn::DemoteTo(half, high), hn::DemoteTo(half, low));
    }

private:
    using Doubles = VectorLanes::Tag;
    using Bits = VectorLanes::BitTag;
    using F = VectorLanes::F;
    using M = VectorLanes::M;

    // The lanes that round to what those of Maths do. The arguments are single-precision numbers.
    HWY_INLINE static M ShortSinCos(F x, F& sine, F& cosine)
    {
        const F shifted = hn::MulAdd(x, Set(twoOverPi), Set(rounder));
        const F count = hn::Sub(shifted, Set(rounder));
        // The first difference is exact, and what is left of others than the smallest (count 0)
        // never below 2^-28.
        F r = hn::NegMulAdd(count, Set(halfPi1), x);
        r = hn::NegMulAdd(count, Set(halfPi2), r);
        r = hn::NegMulAdd(count, Set(halfPi3), r);
        const F z = hn::Mul(r, r);
        const F s = hn::MulAdd(hn::Mul(r, z), Polynomial(z, sinShortTail), r);
        const F c = hn::MulAdd(
            hn::Mul(z, z), Polynomial(z, cosShortTail), hn::NegMulAdd(Set(0.5), z, Set(1.0)));
        const auto quadrant = hn::BitCast(Bits(), shifted);
        const auto one = hn::Set(Bits(), 1);
        const M odd = hn::RebindMask(Doubles(), hn::Eq(hn::And(quadrant, one), one));
        sine = WithSignOf(hn::IfThenElse(odd, c, s), quadrant);
        cosine = WithSignOf(hn::IfThenElse(odd, s, c), hn::Add(quadrant, one));
        const F magnitude = hn::Abs(x);
        const M ordinary
            = hn::And(hn::Le(Set(0x1p-100), magnitude), hn::Le(magnitude, Set(0x1p10)));
        return hn::And(ordinary, hn::And(IsRoundingCertain(sine), IsRoundingCertain(cosine)));
    }

    HWY_INLINE static M ShortAcos(F x, F& angle)
    {
        const F magnitude = hn::Abs(x);
        const F half = Set(0.5);
        const M inner = hn::Le(magnitude, half);
        // As Maths does it: acos x = pi/2 - asin x = 2 asin(sqrt((1 - x) / 2)).
        const F z = hn::IfThenElse(inner, hn::Mul(x, x), hn::NegMulAdd(half, magnitude, half));
        const F root = hn::Sqrt(z);
        const F argument = hn::IfThenElse(inner, hn::Neg(x), hn::CopySign(hn::Add(root, root), x));
        const F base = hn::IfThenElse(
            inner, Set(halfPiHi), hn::IfThenElseZero(hn::Lt(x, hn::Zero(Doubles())), Set(piHi)));
        const F tail = hn::Mul(argument, z);
        angle = hn::Add(base, hn::MulAdd(tail, Polynomial(z, asinShortTail), argument));
        return hn::And(hn::Le(magnitude, Set(1.0)), IsRoundingCertain(angle));
    }

    static constexpr double rounder = 0x1.8p52; // as in MathsTemplate

    HWY_INLINE static F Set(double value) { return hn::Set(Doubles(), value); }

    template <size_t count>
    HWY_INLINE static F Polynomial(F x, const double (&coefficients)[count])
    {
        F sum = Set(coefficients[count - 1]);
        for (size_t i = count - 1; i-- > 0;)
            sum = hn::MulAdd(sum, x, Set(coefficients[i]));
        return sum;
    }

    // Negative in quadrants 2 and 3.
    HWY_INLINE static F WithSignOf(F value, hn::Vec<Bits> quadrant)
    {
        const auto sign = hn::And(hn::ShiftLeft<62>(quadrant), hn::Set(Bits(), 0x8000000000000000));
        return hn::BitCast(Doubles(), hn::Xor(hn::BitCast(Bits(), value), sign));
    }

    // Rounding drops the lowest 29 bits, and goes the other way from their middle on. The short
    // polynomials are wrong by 2^11 units of the last of these bits at most, and are taken to be
    // wrong by four times as much. For numbers that are normal ones in single precision, and 0.
    HWY_INLINE static M IsRoundingCertain(F value)
    {
        constexpr uint64_t dropped = (uint64_t { 1 } << 29) - 1;
        constexpr uint64_t middle = uint64_t { 1 } << 28;
        constexpr uint64_t error = uint64_t { 1 } << 13;
        const hn::RebindToSigned<Doubles> ints;
        const auto fromBand
            = hn::And(hn::Sub(hn::BitCast(Bits(), value), hn::Set(Bits(), middle - error)),
                hn::Set(Bits(), dropped));
        return hn::RebindMask(
            Doubles(), hn::Gt(hn::BitCast(ints, fromBand), hn::Set(ints, int64_t { 2 * error })));
    }
};
