// The language's maths over vectors. Included between HWY_BEFORE_NAMESPACE and
// HWY_AFTER_NAMESPACE, in a namespace of its own for each instruction set, where `hn` is Highway's.

#define PXVIS_LANES HWY_ATTR
#define PXVIS_LANE_FUNCTION HWY_INLINE // a pair of vectors that is returned goes through memory
#include "kernels/MathsTemplate.inl"
#undef PXVIS_LANE_FUNCTION
#undef PXVIS_LANES

// What MathsTemplate asks of a lane type (see OneLane), for a vector of doubles.
struct VectorLanes
{
    using Tag = hn::ScalableTag<double>;
    using BitTag = hn::RebindToUnsigned<Tag>;
    using F = hn::Vec<Tag>;
    using U = hn::Vec<BitTag>;
    using M = hn::Mask<Tag>;

    HWY_INLINE static F Set(double value) { return hn::Set(Tag(), value); }

    HWY_INLINE static U SetBits(uint64_t value) { return hn::Set(BitTag(), value); }

    HWY_INLINE static U Bits(F value) { return hn::BitCast(BitTag(), value); }

    HWY_INLINE static F FromBits(U bits) { return hn::BitCast(Tag(), bits); }

    template <int count>
    HWY_INLINE static U ShiftLeft(U bits)
    {
        return hn::ShiftLeft<count>(bits);
    }

    template <int count>
    HWY_INLINE static U ShiftRight(U bits)
    {
        return hn::ShiftRight<count>(bits);
    }

    HWY_INLINE static F Sqrt(F value) { return hn::Sqrt(value); }

    HWY_INLINE static M Less(F a, F b) { return hn::Lt(a, b); }

    HWY_INLINE static M LessEqual(F a, F b) { return hn::Le(a, b); }

    HWY_INLINE static M Equal(F a, F b) { return hn::Eq(a, b); }

    HWY_INLINE static M IsZero(U bits)
    {
        return hn::RebindMask(Tag(), hn::Eq(bits, hn::Zero(BitTag())));
    }

    HWY_INLINE static M And(M a, M b) { return hn::And(a, b); }

    HWY_INLINE static M Or(M a, M b) { return hn::Or(a, b); }

    HWY_INLINE static M Not(M mask) { return hn::Not(mask); }

    HWY_INLINE static bool All(M mask) { return hn::AllTrue(Tag(), mask); }

    HWY_INLINE static F Select(M mask, F yes, F no) { return hn::IfThenElse(mask, yes, no); }

    HWY_INLINE static void ReduceHuge(M mask, F x, F& hi, F& lo, U& quadrant)
    {
        constexpr size_t lanes = hn::MaxLanes(Tag());
        double arguments[lanes];
        double wanted[lanes];
        double his[lanes];
        double los[lanes];
        uint64_t quadrants[lanes];
        hn::StoreU(x, Tag(), arguments);
        hn::StoreU(hn::IfThenElseZero(mask, Set(1.0)), Tag(), wanted);
        hn::StoreU(hi, Tag(), his);
        hn::StoreU(lo, Tag(), los);
        hn::StoreU(quadrant, BitTag(), quadrants);
        for (size_t i = 0; i < lanes; ++i) {
            if (wanted[i] == 0.0)
                continue;
            const ReducedAngle angle = ReduceHugeAngle(arguments[i]);
            his[i] = angle.hi;
            los[i] = angle.lo;
            quadrants[i] = angle.quadrant;
        }
        hi = hn::LoadU(Tag(), his);
        lo = hn::LoadU(Tag(), los);
        quadrant = hn::LoadU(BitTag(), quadrants);
    }
};

using Maths = MathsTemplate<VectorLanes>;
