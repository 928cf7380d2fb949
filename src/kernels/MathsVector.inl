// The language's maths over vectors. Included between HWY_BEFORE_NAMESPACE and
// HWY_AFTER_NAMESPACE, in a namespace of its own for each instruction set, where `hn` is Highway's.

#define PXVIS_LANES HWY_ATTR
#include "kernels/MathsTemplate.inl"
#undef PXVIS_LANES

// What MathsTemplate asks of a lane type (see OneLane), for a vector of doubles.
struct VectorLanes
{
    using Tag = hn::ScalableTag<double>;
    using BitTag = hn::RebindToUnsigned<Tag>;
    using F = hn::Vec<Tag>;
    using U = hn::Vec<BitTag>;
    using M = hn::Mask<Tag>;

    static F Set(double value) { return hn::Set(Tag(), value); }

    static U SetBits(uint64_t value) { return hn::Set(BitTag(), value); }

    static U Bits(F value) { return hn::BitCast(BitTag(), value); }

    static F FromBits(U bits) { return hn::BitCast(Tag(), bits); }

    template <int count>
    static U ShiftLeft(U bits)
    {
        return hn::ShiftLeft<count>(bits);
    }

    template <int count>
    static U ShiftRight(U bits)
    {
        return hn::ShiftRight<count>(bits);
    }

    static F Sqrt(F value) { return hn::Sqrt(value); }

    static M Less(F a, F b) { return hn::Lt(a, b); }

    static M LessEqual(F a, F b) { return hn::Le(a, b); }

    static M Equal(F a, F b) { return hn::Eq(a, b); }

    static M IsZero(U bits) { return hn::RebindMask(Tag(), hn::Eq(bits, hn::Zero(BitTag()))); }

    static M And(M a, M b) { return hn::And(a, b); }

    static M Or(M a, M b) { return hn::Or(a, b); }

    static M Not(M mask) { return hn::Not(mask); }

    static bool All(M mask) { return hn::AllTrue(Tag(), mask); }

    static F Select(M mask, F yes, F no) { return hn::IfThenElse(mask, yes, no); }

    static void ReduceHuge(M mask, F x, F& hi, F& lo, U& quadrant)
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
