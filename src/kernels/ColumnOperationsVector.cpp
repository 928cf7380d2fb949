#include "kernels/ColumnOperations.h"
#include "kernels/KernelForm.h"
#include "kernels/MathsCoefficients.h"
#include "kernels/MathsReduce.h"

#include <cstddef>
#include <iterator>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/ColumnOperationsVector.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

#if HWY_TARGET != HWY_SCALAR

namespace pxvis::maths::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#include "kernels/MathsVector.inl"

}

namespace pxvis::kernels::HWY_NAMESPACE {

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using maths::HWY_NAMESPACE::Maths;
using Doubles = hn::ScalableTag<double>;
using F = hn::Vec<Doubles>;

HWY_INLINE F Set(double value)
{
    return hn::Set(Doubles(), value);
}

// -0 becomes 0, as it does in an integer.
HWY_INLINE F WithoutNegativeZero(F value)
{
    return hn::Add(value, hn::Zero(Doubles()));
}

// Cut to 32 bits as OQTruncateToInt32 does.
HWY_INLINE F Truncated32(F value)
{
    const auto inRange
        = hn::And(hn::Lt(Set(-2147483649.0), value), hn::Lt(value, Set(2147483648.0)));
    return hn::IfThenElse(inRange, WithoutNegativeZero(hn::Trunc(value)), Set(-2147483648.0));
}

// As OQTruncateToInt64 and back; doubles of 2^52 and more are whole.
HWY_INLINE F Truncated64(F value)
{
    const auto inRange = hn::And(
        hn::Le(Set(-9223372036854775808.0), value), hn::Lt(value, Set(9223372036854775808.0)));
    return hn::IfThenElse(
        inRange, WithoutNegativeZero(hn::Trunc(value)), Set(-9223372036854775808.0));
}

HWY_INLINE F Truth(hn::Mask<Doubles> mask)
{
    return hn::IfThenElseZero(mask, Set(1.0));
}

HWY_INLINE hn::Mask<Doubles> IsZero(F value)
{
    return hn::Eq(value, hn::Zero(Doubles()));
}

HWY_INLINE F Trunc(F value, F digits)
{
    const auto sensible = hn::And(hn::Le(hn::Zero(Doubles()), digits), hn::Le(digits, Set(8.0)));
    const F power = Maths::Pow(Set(10.0), digits);
    return hn::IfThenElse(sensible, hn::Div(Truncated64(hn::Mul(value, power)), power), value);
}

template <typename Operation>
HWY_INLINE void ForLanes(int32_t count, const Operation& operation)
{
    const int32_t lanes = static_cast<int32_t>(hn::Lanes(Doubles()));
    for (int32_t i = 0; i < count; i += lanes)
        operation(i);
}

}

#define PXVIS_COLUMN_1(NAME, RESULT)                                                               \
    static void NAME(                                                                              \
        double* result, const double* aa, const double*, const double*, int32_t count)             \
    {                                                                                              \
        ForLanes(count, [&](int32_t i) HWY_ATTR {                                                  \
            const F a = hn::LoadU(Doubles(), aa + i);                                              \
            hn::StoreU(RESULT, Doubles(), result + i);                                             \
        });                                                                                        \
    }
#define PXVIS_COLUMN_2(NAME, RESULT)                                                               \
    static void NAME(                                                                              \
        double* result, const double* aa, const double* bb, const double*, int32_t count)          \
    {                                                                                              \
        ForLanes(count, [&](int32_t i) HWY_ATTR {                                                  \
            const F a = hn::LoadU(Doubles(), aa + i);                                              \
            const F b = hn::LoadU(Doubles(), bb + i);                                              \
            hn::StoreU(RESULT, Doubles(), result + i);                                             \
        });                                                                                        \
    }

PXVIS_COLUMN_1(Copy, a)
PXVIS_COLUMN_2(Add, hn::Add(a, b))
PXVIS_COLUMN_2(Subtract, hn::Sub(a, b))
PXVIS_COLUMN_2(Multiply, hn::Mul(a, b))
PXVIS_COLUMN_2(Divide, hn::IfThenElse(IsZero(b), a, hn::Div(a, b)))
PXVIS_COLUMN_1(Negate, hn::Neg(a))
PXVIS_COLUMN_2(
    Modulo, hn::IfThenElse(IsZero(b), a, hn::Sub(a, hn::Mul(Truncated32(hn::Div(a, b)), b))))
PXVIS_COLUMN_2(Power, Maths::Pow(a, b))
PXVIS_COLUMN_2(Less, hn::Sub(b, a))
PXVIS_COLUMN_2(Smaller, hn::IfThenElse(hn::Gt(hn::Abs(a), hn::Abs(b)), b, a))
PXVIS_COLUMN_2(Larger, hn::IfThenElse(hn::Gt(hn::Abs(b), hn::Abs(a)), b, a))

PXVIS_COLUMN_1(Sin, Maths::Sin(a))
PXVIS_COLUMN_1(Cos, Maths::Cos(a))
PXVIS_COLUMN_1(Tan, Maths::Tan(a))
PXVIS_COLUMN_1(Abs, hn::Abs(a))
PXVIS_COLUMN_1(Atan, Maths::Atan(a))
PXVIS_COLUMN_1(Log, Maths::Log(a))
PXVIS_COLUMN_1(Log10, hn::Div(Maths::Log(a), Set(2.302585092994046)))
PXVIS_COLUMN_1(AbsSin, hn::Abs(Maths::Sin(a)))
PXVIS_COLUMN_1(AbsCos, hn::Abs(Maths::Cos(a)))
PXVIS_COLUMN_1(Sign, hn::IfThenElse(hn::Lt(a, hn::Zero(Doubles())), Set(-1.0), Set(1.0)))
PXVIS_COLUMN_2(Min, hn::IfThenElse(hn::Gt(a, b), b, a))
PXVIS_COLUMN_2(Max, hn::IfThenElse(hn::Gt(b, a), b, a))
PXVIS_COLUMN_2(Equal, Truth(hn::Lt(hn::Abs(hn::Sub(a, b)), Set(0.0001))))
PXVIS_COLUMN_2(Below, Truth(hn::Gt(b, a)))
PXVIS_COLUMN_2(Above, Truth(hn::Gt(a, b)))
PXVIS_COLUMN_1(Int, Truncated32(a))
PXVIS_COLUMN_1(Frac, hn::Sub(a, Truncated32(a)))
PXVIS_COLUMN_1(Round,
    Truncated32(
        hn::IfThenElse(hn::Gt(a, hn::Zero(Doubles())), hn::Add(a, Set(0.5)), hn::Sub(a, Set(0.5)))))
PXVIS_COLUMN_2(Trunc, Trunc(a, b))

PXVIS_COLUMN_2(And, hn::IfThenZeroElse(hn::Or(IsZero(a), IsZero(b)), Set(1.0)))
PXVIS_COLUMN_2(Or, hn::IfThenZeroElse(hn::And(IsZero(a), IsZero(b)), Set(1.0)))
PXVIS_COLUMN_1(Not, Truth(IsZero(a)))

#undef PXVIS_COLUMN_1
#undef PXVIS_COLUMN_2

static void If(double* result, const double* aa, const double* bb, const double* cc, int32_t count)
{
    ForLanes(count, [&](int32_t i) HWY_ATTR {
        const Doubles d;
        const auto condition = hn::Gt(hn::LoadU(d, aa + i), hn::Zero(d));
        hn::StoreU(
            hn::IfThenElse(condition, hn::LoadU(d, bb + i), hn::LoadU(d, cc + i)), d, result + i);
    });
}

const ColumnFunction* Functions()
{
    static constexpr ColumnFunction functions[] = { Copy, Add, Subtract, Multiply, Divide, Negate,
        Modulo, Power, Less, Smaller, Larger, Sin, Cos, Tan, Abs, Atan, Log, Log10, AbsSin, AbsCos,
        If, Sign, Min, Max, Equal, Below, Above, Int, Frac, Round, Trunc, And, Or, Not };
    static_assert(std::size(functions) == static_cast<size_t>(ColumnOperation::Count));
    static_assert(hn::MaxLanes(Doubles()) <= columnPadding);
    return functions;
}

void RandomColumn(
    double* result, uint32_t state, const LinearGenerator& perLane, int32_t limit, int32_t count)
{
    const Doubles d;
    const hn::Rebind<uint32_t, Doubles> du;
    const hn::RebindToSigned<decltype(du)> di;
    constexpr size_t most = hn::MaxLanes(d);
    const uint32_t lanes = static_cast<uint32_t>(hn::Lanes(d));

    uint32_t starts[most]; // behind each lane's first step
    for (uint32_t i = 0; i < lanes; ++i) {
        starts[i] = randomGenerator.Next(state);
        state = perLane.Next(state);
    }
    const LinearGenerator perTurn = perLane.Steps(lanes);
    const F divisor = hn::Abs(Set(limit));
    auto high = hn::LoadU(du, starts);
    const auto bits = [&](hn::Vec<decltype(du)> states) HWY_ATTR {
        return hn::And(hn::ShiftRight<16>(states), hn::Set(du, 0x7FFFu));
    };
    for (int32_t i = 0; i < count; i += static_cast<int32_t>(lanes)) {
        const auto low = hn::Add(hn::Mul(high, hn::Set(du, randomGenerator.multiplier)),
            hn::Set(du, randomGenerator.summand));
        const auto number = hn::Or(hn::ShiftLeft<15>(bits(high)), bits(low));
        const F dividend = hn::PromoteTo(d, hn::BitCast(di, number));
        // Exact: the quotient of whole numbers below 2^31 is never rounded up to a whole one.
        const F whole = hn::Trunc(hn::Div(dividend, divisor));
        const F remainder = hn::Sub(dividend, hn::Mul(whole, divisor));
        hn::StoreU(hn::Mul(remainder, Set(1.0 / 8192.0)), d, result + i);
        high
            = hn::Add(hn::Mul(high, hn::Set(du, perTurn.multiplier)), hn::Set(du, perTurn.summand));
    }
}

}

#else // one lane: an equation's own run is as fast

namespace pxvis::kernels::HWY_NAMESPACE {

const ColumnFunction* Functions()
{
    return nullptr;
}

void RandomColumn(double*, uint32_t, const LinearGenerator&, int32_t, int32_t) { }

}

#endif

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace pxvis::kernels {

HWY_EXPORT(Functions);
HWY_EXPORT(RandomColumn);

const ColumnFunction* ColumnFunctions()
{
    return ChosenKernels() == KernelForm::Scalar ? nullptr : HWY_DYNAMIC_DISPATCH(Functions)();
}

void RandomColumn(
    double* result, uint32_t state, const LinearGenerator& perLane, int32_t limit, int32_t count)
{
    HWY_DYNAMIC_DISPATCH(RandomColumn)(result, state, perLane, limit, count);
}

}

#endif
