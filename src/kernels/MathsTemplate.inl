// The body of MathsTemplate, which stands in a namespace for each instruction set: MathsTemplate.h
// includes it for one lane, MathsVector.inl for vectors. PXVIS_LANES is what a lambda needs there,
// PXVIS_LANE_FUNCTION what a function does.

// The functions of Maths.h over a lane type L (see OneLane): the same steps in every lane, so that
// a lane's result depends on nothing but its own argument.
//
// The formulas are the usual ones of the field: reduction of the argument, a polynomial, and the
// leading terms kept as an unevaluated sum of two doubles (T. J. Dekker, "A floating-point
// technique for extending the available precision", 1971). Products are made exact by clearing low
// bits of the factors, not by fused multiply-adds, which not every processor has. Branches only
// skip work that no lane needs.
template <typename L>
class MathsTemplate
{
public:
    using F = typename L::F;
    using U = typename L::U;
    using M = typename L::M;

    PXVIS_LANE_FUNCTION static F Sin(F x)
    {
        const Angle angle = Reduce(Abs(x));
        const Pair sum = SineOf(angle);
        return Finish(x, sum.hi + sum.lo, Signs(x) ^ QuadrantSign(angle.quadrant));
    }

    PXVIS_LANE_FUNCTION static F Cos(F x)
    {
        // cos x = sin(x + pi/2)
        Angle angle = Reduce(Abs(x));
        angle.quadrant = angle.quadrant + L::SetBits(1);
        const Pair sum = SineOf(angle);
        return Finish(x, sum.hi + sum.lo, QuadrantSign(angle.quadrant));
    }

    // Sin(x) and Cos(x), for less than both cost.
    PXVIS_LANE_FUNCTION static void SinCos(F x, F& sine, F& cosine)
    {
        const Angle angle = Reduce(Abs(x));
        const U next = angle.quadrant + L::SetBits(1);
        const Pair s
            = SineOrCosine(angle.hi, angle.lo, [](F first, F) PXVIS_LANES { return first; });
        const Pair c
            = SineOrCosine(angle.hi, angle.lo, [](F, F second) PXVIS_LANES { return second; });
        const M even = L::IsZero(angle.quadrant & L::SetBits(1));
        const F ofSine = s.hi + s.lo;
        const F ofCosine = c.hi + c.lo;
        sine
            = Finish(x, L::Select(even, ofSine, ofCosine), Signs(x) ^ QuadrantSign(angle.quadrant));
        cosine = Finish(x, L::Select(even, ofCosine, ofSine), QuadrantSign(next));
    }

    PXVIS_LANE_FUNCTION static F Tan(F x)
    {
        const Angle angle = Reduce(Abs(x));
        const Pair sine = SineOrCosine(angle.hi, angle.lo, [](F s, F) PXVIS_LANES { return s; });
        const Pair cosine = SineOrCosine(angle.hi, angle.lo, [](F, F c) PXVIS_LANES { return c; });
        // In odd quadrants tan(r + pi/2) = -cos r / sin r.
        const M even = L::IsZero(angle.quadrant & L::SetBits(1));
        const Pair numerator
            = FastSum(L::Select(even, sine.hi, cosine.hi), L::Select(even, sine.lo, cosine.lo));
        const Pair denominator
            = FastSum(L::Select(even, cosine.hi, sine.hi), L::Select(even, cosine.lo, sine.lo));
        const U oddSign = L::template ShiftLeft<63>(angle.quadrant);
        const Pair quotient = Quotient(numerator, denominator);
        return Finish(x, quotient.hi + quotient.lo, Signs(x) ^ oddSign);
    }

    PXVIS_LANE_FUNCTION static F Atan(F x)
    {
        // atan x = pi/4 + atan((x - 1) / (x + 1)) = pi/2 + atan(-1 / x)
        const F zero = L::Set(0.0);
        const F one = L::Set(1.0);
        const F bound = L::Set(0x1p60); // from here on the result is pi/2 rounded
        const F magnitude = L::Select(L::Less(bound, Abs(x)), bound, Abs(x));
        const M small = L::LessEqual(magnitude, L::Set(0.4142));
        const M large = L::Less(L::Set(2.4142), magnitude);
        const auto pick = [&](F ifSmall, F middle, F ifLarge) PXVIS_LANES {
            return L::Select(small, ifSmall, L::Select(large, ifLarge, middle));
        };
        const Pair below = FastSum(zero - one, magnitude);
        const Pair above = FastSum(one, magnitude);
        const Pair t
            = Quotient({ pick(magnitude, below.hi, zero - one), pick(zero, below.lo, zero) },
                { pick(one, above.hi, magnitude), pick(zero, above.lo, zero) });
        const F z = t.hi * t.hi;
        const F tail = t.hi * (z * Polynomial(z, atanTail));
        const Pair sum = FastSum(pick(zero, L::Set(quarterPiHi), L::Set(halfPiHi)), t.hi);
        const F rest = (t.lo - t.lo * z) + pick(zero, L::Set(quarterPiLo), L::Set(halfPiLo));
        const F result = sum.hi + (sum.lo + (tail + rest));
        return OrNaN(x, L::FromBits(L::Bits(result) | Signs(x)));
    }

    PXVIS_LANE_FUNCTION static F Acos(F x)
    {
        const F one = L::Set(1.0);
        const F half = L::Set(0.5);
        const F zero = L::Set(0.0);
        const F magnitude = Abs(x);
        const M inner = L::LessEqual(magnitude, half);
        const F z = L::Select(inner, x * x, half * (one - magnitude));
        const F tail = z * Polynomial(z, asinTail);

        // pi/2 - asin x
        const Pair start = FastSum(L::Set(halfPiHi), zero - x);
        const F nearZero = start.hi + (start.lo + (L::Set(halfPiLo) - x * tail));

        // acos x = 2 asin(sqrt((1 - x) / 2)), and for negative x pi minus that of -x.
        const F root = L::Sqrt(z);
        const F rootHead = Head<26>(root);
        const F divisor = root + rootHead;
        const F rootRest
            = (z - rootHead * rootHead) / L::Select(L::Equal(divisor, zero), one, divisor);
        const F rest = rootRest + root * tail;
        const F nearOne = L::Set(2.0) * (rootHead + rest);
        const Pair turned = FastSum(L::Set(piHi), L::Set(-2.0) * rootHead);
        const F nearMinusOne = turned.hi + (turned.lo + (L::Set(piLo) - L::Set(2.0) * rest));
        const F outer = L::Select(L::Less(x, zero), nearMinusOne, nearOne);

        return L::Select(L::LessEqual(magnitude, one), L::Select(inner, nearZero, outer), NaN());
    }

    PXVIS_LANE_FUNCTION static F Log(F x)
    {
        // With x = 2^k (1 + f) and s = f / (2 + f):
        // log(1 + f) = f - (f^2/2 - s (f^2/2 + z p(z))), z = s^2.
        const F zero = L::Set(0.0);
        const F half = L::Set(0.5);
        const Binary binary = Split(x);
        const F f = binary.fraction;
        const F s = f / (L::Set(2.0) + f);
        const F z = s * s;
        const F head = Head<26>(f);
        const F halfSquare = half * (head * head);
        const F halfSquareRest = half * ((f - head) * (f + head));
        const F series = s * (halfSquare + halfSquareRest + z * Polynomial(z, logTail));
        const Pair first = FastSum(binary.exponent * L::Set(ln2Hi), f);
        const Pair second = FastSum(first.hi, zero - halfSquare);
        const F rest = (series - halfSquareRest) + binary.exponent * L::Set(ln2Lo);
        F result = second.hi + (second.lo + (first.lo + rest));

        const M ordinary = L::And(L::Less(zero, x), L::Less(x, Infinity()));
        if (!L::All(ordinary)) {
            const F special = L::Select(
                L::Equal(x, zero), zero - Infinity(), L::Select(L::Equal(x, Infinity()), x, NaN()));
            result = L::Select(ordinary, result, special);
        }
        return result;
    }

    PXVIS_LANE_FUNCTION static F Exp(F x)
    {
        // Beyond these the result is infinity or 0 all the same.
        const F low = L::Set(-746.0);
        const F high = L::Set(710.0);
        const F clamped = L::Select(L::Less(x, low), low, L::Select(L::Less(high, x), high, x));
        return OrNaN(x, ExpOfSum({ clamped, L::Set(0.0) }));
    }

    PXVIS_LANE_FUNCTION static F Pow(F x, F y)
    {
        const F zero = L::Set(0.0);
        const F magnitude = Abs(x);
        const Pair log = LogAsSum(magnitude);

        // y log|x|, correct to about 2^-67, which leaves 2^-57 of the result at its largest.
        const F yHead = Head<26>(y);
        const F logHead = Head<26>(log.hi);
        const F product = y * log.hi;
        Pair exponent { yHead * logHead,
            (y - yHead) * logHead + y * ((log.hi - logHead) + log.lo) };

        const M ordinary = L::And(
            L::And(L::Less(zero, x), L::Less(x, Infinity())), L::Less(Abs(product), L::Set(700.0)));
        if (L::All(ordinary))
            return ExpOfSum(exponent);

        const F limit = L::Set(800.0); // exp gives infinity here, and 0 at its negative
        const M above = L::Less(limit, product);
        const M below = L::Less(product, zero - limit);
        exponent.hi = L::Select(above, limit, L::Select(below, zero - limit, exponent.hi));
        exponent.lo = L::Select(L::Or(above, below), zero, exponent.lo);
        const F power = ExpOfSum(exponent);
        return L::Select(ordinary, power, PowSpecial(x, y, power));
    }

private:
    // An unevaluated sum, |lo| <= ulp(hi) / 2 after FastSum.
    struct Pair
    {
        F hi;
        F lo;
    };

    // quadrant * pi/2 + hi + lo; of the quadrant only the two lowest bits count.
    struct Angle
    {
        F hi;
        F lo;
        U quadrant;
    };

    // 2^exponent * (1 + fraction)
    struct Binary
    {
        F exponent;
        F fraction;
    };

    static constexpr uint64_t signBit = 0x8000000000000000;

    // Added and taken away again, this rounds to a whole number, which is then in the low bits.
    static constexpr double rounder = 0x1.8p52;
    static constexpr uint64_t rounderBits = 0x4338000000000000;

    PXVIS_LANE_FUNCTION static F NaN() { return L::Set(std::numeric_limits<double>::quiet_NaN()); }

    PXVIS_LANE_FUNCTION static F Infinity()
    {
        return L::Set(std::numeric_limits<double>::infinity());
    }

    PXVIS_LANE_FUNCTION static F Abs(F x) { return L::FromBits(L::Bits(x) & L::SetBits(~signBit)); }

    PXVIS_LANE_FUNCTION static U Signs(F x) { return L::Bits(x) & L::SetBits(signBit); }

    // x cut to its highest bits, so that products with another such number are exact.
    template <int count>
    PXVIS_LANE_FUNCTION static F Head(F x)
    {
        return L::FromBits(L::Bits(x) & L::SetBits(~uint64_t { 0 } << (53 - count)));
    }

    // The rounded sum and its error, exact when |a| >= |b| or a = 0.
    PXVIS_LANE_FUNCTION static Pair FastSum(F a, F b)
    {
        const F sum = a + b;
        return { sum, (a - sum) + b };
    }

    // coefficient(0) + coefficient(1) x + ..., the even and the odd powers in two chains.
    template <size_t count, typename Coefficient>
    PXVIS_LANE_FUNCTION static F PolynomialOf(F x, Coefficient coefficient)
    {
        const F square = x * x;
        F last = coefficient(count - 1);
        F other = coefficient(count - 2);
        size_t left = count - 2;
        for (; left >= 2; left -= 2) {
            last = last * square + coefficient(left - 1);
            other = other * square + coefficient(left - 2);
        }
        if (left == 0)
            return other + x * last;
        return last * square + coefficient(0) + x * other;
    }

    template <size_t count>
    PXVIS_LANE_FUNCTION static F Polynomial(F x, const double (&coefficients)[count])
    {
        return PolynomialOf<count>(
            x, [&](size_t i) PXVIS_LANES { return L::Set(coefficients[i]); });
    }

    PXVIS_LANE_FUNCTION static F OrNaN(F x, F result)
    {
        return L::Select(L::Equal(x, x), result, NaN());
    }

    // Angle of x >= 0, in three steps after W. J. Cody and W. Waite, "Software Manual for the
    // Elementary Functions", 1980, with what the second step rounds away put back in the third.
    PXVIS_LANE_FUNCTION static Angle Reduce(F x)
    {
        const F shifted = x * L::Set(twoOverPi) + L::Set(rounder);
        const F count = shifted - L::Set(rounder);
        const F first = x - count * L::Set(halfPi1); // exact
        const F secondPart = count * L::Set(halfPi2); // exact
        const F second = first - secondPart;
        const F rest = count * L::Set(halfPi3) - ((first - second) - secondPart);
        Angle angle;
        angle.hi = second - rest;
        angle.lo = (second - angle.hi) - rest;
        angle.quadrant = L::Bits(shifted);

        // What is left of pi/2 times the count is below 2^-95: a tiny hi has too few good bits.
        const M good = L::And(L::LessEqual(x, L::Set(0x1p20)),
            L::Or(L::Less(x, L::Set(0.75)), L::Less(L::Set(0x1p-30), Abs(angle.hi))));
        if (!L::All(good))
            L::ReduceHuge(L::Not(good), x, angle.hi, angle.lo, angle.quadrant);
        return angle;
    }

    // sin(r + lo) or cos(r + lo), |r| <= pi/4, as a sum of two. Both have one shape; pick(s, c)
    // gives s for the sine and c for the cosine. With r = h + d, where h^3 is exact, they are
    // - r + c0 h^3 + (c0 d (r^2 + r h + h^2) + r z^2 p(z) + lo (1 - z/2))
    // - 1 - h^2/2 + (-d (r + h) / 2 + z^2 q(z) - lo r)
    template <typename Pick>
    PXVIS_LANE_FUNCTION static Pair SineOrCosine(F r, F lo, Pick pick)
    {
        const F one = L::Set(1.0);
        const F half = L::Set(0.5);
        const F zero = L::Set(0.0);
        const F cube = L::Set(sinTail[0]);
        const F h = Head<17>(r);
        const F d = r - h;
        const F e = r + h;
        const F square = h * h;
        const F z = square + d * e;
        const F series = PolynomialOf<std::size(cosTail)>(z,
            [&](size_t i) PXVIS_LANES { return pick(L::Set(sinTail[i + 1]), L::Set(cosTail[i])); });
        const F leading = pick(r, one);
        const Pair sum = FastSum(leading, pick(cube * (square * h), zero - half * square));
        const F curve = d * pick(cube * (z + h * e), zero - half * e);
        const F slope = pick(one - half * z, zero - r);
        return { sum.hi, sum.lo + (curve + (leading * (z * z * series) + lo * slope)) };
    }

    // The sine with the quadrant's choice between sine and cosine, but without its sign.
    PXVIS_LANE_FUNCTION static Pair SineOf(const Angle& angle)
    {
        const M even = L::IsZero(angle.quadrant & L::SetBits(1));
        return SineOrCosine(
            angle.hi, angle.lo, [even](F s, F c) PXVIS_LANES { return L::Select(even, s, c); });
    }

    // Negative in quadrants 2 and 3.
    PXVIS_LANE_FUNCTION static U QuadrantSign(U quadrant)
    {
        return L::template ShiftLeft<62>(quadrant) & L::SetBits(signBit);
    }

    PXVIS_LANE_FUNCTION static F Finish(F x, F result, U signs)
    {
        const M finite = L::Less(Abs(x), Infinity());
        return L::Select(finite, L::FromBits(L::Bits(result) ^ signs), NaN());
    }

    // Not normalised: lo may be a few ulp of hi.
    PXVIS_LANE_FUNCTION static Pair Quotient(const Pair& numerator, const Pair& denominator)
    {
        const F reciprocal = L::Set(1.0) / denominator.hi;
        const F q = numerator.hi * reciprocal;
        const F qHead = Head<26>(q);
        const F qRest = q - qHead;
        const F dHead = Head<26>(denominator.hi);
        const F dRest = denominator.hi - dHead;
        const F remainder
            = ((numerator.hi - qHead * dHead) - qHead * dRest) - qRest * dHead - qRest * dRest;
        return { q, ((remainder + numerator.lo) - q * denominator.lo) * reciprocal };
    }

    // x > 0 with 1 + fraction from sqrt(1/2) to sqrt(2). Other x give something finite.
    PXVIS_LANE_FUNCTION static Binary Split(F x)
    {
        constexpr uint64_t sqrtHalfBits = 0x3fe6a09e667f3bcd;
        constexpr uint64_t oneBits = 0x3ff0000000000000;
        const M denormal = L::Less(x, L::Set(std::numeric_limits<double>::min()));
        const F normal = L::Select(denormal, x * L::Set(0x1p54), x);
        const U shifted = L::Bits(normal) + L::SetBits(oneBits - sqrtHalfBits);
        // The exponent field as the low bits of 2^52 is a whole number of the type F.
        const F field
            = L::FromBits(L::template ShiftRight<52>(shifted) | L::SetBits(0x4330000000000000));
        const F bias = L::Select(denormal, L::Set(0x1p52 + 1023 + 54), L::Set(0x1p52 + 1023));
        const F significand
            = L::FromBits((shifted & L::SetBits(0xfffffffffffff)) + L::SetBits(sqrtHalfBits));
        return { field - bias, significand - L::Set(1.0) };
    }

    // log x for finite x > 0, correct to about 2^-68 of the result.
    PXVIS_LANE_FUNCTION static Pair LogAsSum(F x)
    {
        const F two = L::Set(2.0);
        const F three = L::Set(3.0);
        const F five = L::Set(5.0);
        const Binary binary = Split(x);
        const F f = binary.fraction;

        // s = f / (2 + f) as sHead + sRest, z = s^2; 5 sHead^2 and 3 zHead^2 are exact.
        const F v = two + f;
        const F vHead = Head<26>(v);
        const F vRest = (v - vHead) + (f - (v - two));
        const F s = f / v;
        const F sHead = Head<25>(s);
        const F sRest = ((f - sHead * vHead) - sHead * vRest) / v;
        const F square = sHead * sHead;
        const F squareRest = sRest * (s + sHead);
        const Pair z = FastSum(square, squareRest);
        const F zHead = Head<25>(z.hi);
        const F fourth = three * (zHead * zHead);
        const F fourthRest = three * (((z.hi - zHead) + z.lo) * (z.hi + zHead));

        // t = 15 + 5 z + 3 z^2 + z^3 p(z)
        const Pair start = FastSum(L::Set(15.0), five * square);
        const Pair next = FastSum(start.hi, fourth);
        const F series = z.hi * z.hi * z.hi * Polynomial(z.hi, powLogTail);
        const Pair t
            = FastSum(next.hi, (start.lo + next.lo) + (five * squareRest + (fourthRest + series)));
        const F tHead = Head<26>(t.hi);
        const F tRest = (t.hi - tHead) + t.lo;

        // log(1 + f) = 2/15 s t
        const Pair st = FastSum(sHead * tHead, sHead * tRest + sRest * t.hi);
        const F stHead = Head<26>(st.hi);
        const F stRest = (st.hi - stHead) + st.lo;
        const F rest = L::Set(twoFifteenthsHi) * stRest + L::Set(twoFifteenthsLo) * st.hi;

        const Pair sum = FastSum(binary.exponent * L::Set(ln2Hi), L::Set(twoFifteenthsHi) * stHead);
        return FastSum(sum.hi, sum.lo + (rest + binary.exponent * L::Set(ln2Lo)));
    }

    // exp(x.hi + x.lo) for |x.hi| <= 1000 and a much smaller x.lo.
    PXVIS_LANE_FUNCTION static F ExpOfSum(const Pair& x)
    {
        const F shifted = x.hi * L::Set(oneOverLn2) + L::Set(rounder);
        const F count = shifted - L::Set(rounder);
        const F first = x.hi - count * L::Set(ln2Hi); // exact
        const F second = count * L::Set(ln2Lo) - x.lo;
        const F r = first - second;
        const F rRest = (first - r) - second;
        const Pair sum = FastSum(L::Set(1.0), r);
        const F result = sum.hi + (sum.lo + (r * r * Polynomial(r, expTail) + rRest));

        // 2^count in two factors, since the count goes beyond the exponents of doubles. The sum of
        // the two exponent fields is count + 2046.
        const U fields = L::Bits(shifted) + L::SetBits(2046 - rounderBits);
        const U half = L::template ShiftRight<1>(fields);
        const F factor = L::FromBits(L::template ShiftLeft<52>(half));
        const F otherFactor = L::FromBits(L::template ShiftLeft<52>(fields - half));
        return result * factor * otherFactor;
    }

    // The results of pow that power, |x|^y where that is an ordinary number, does not give.
    PXVIS_LANE_FUNCTION static F PowSpecial(F x, F y, F power)
    {
        const F zero = L::Set(0.0);
        const F one = L::Set(1.0);
        const F magnitude = Abs(x);
        const F yMagnitude = Abs(y);
        const M rising = L::Less(zero, y);

        // y is whole, and odd, by what is left of it beside 2^52.
        const F unit = L::Set(0x1p52);
        const M large = L::LessEqual(unit, yMagnitude);
        const F shifted = L::Select(large, yMagnitude, yMagnitude + unit);
        const M whole = L::Or(large, L::Equal(shifted - unit, yMagnitude));
        const M lowBitClear = L::IsZero(L::Bits(shifted) & L::SetBits(1));
        const M odd
            = L::And(L::And(whole, L::Not(lowBitClear)), L::Less(yMagnitude, L::Set(0x1p53)));

        const M atZero = L::Equal(magnitude, zero);
        const M atInfinity = L::Equal(magnitude, Infinity());
        F result = L::Select(atZero, L::Select(rising, zero, Infinity()), power);
        result = L::Select(atInfinity, L::Select(rising, Infinity(), zero), result);

        const M endless = L::Equal(yMagnitude, Infinity());
        const M growing
            = L::Equal(L::Select(rising, one, zero), L::Select(L::Less(one, magnitude), one, zero));
        const F limit = L::Select(growing, Infinity(), zero);
        result = L::Select(endless, L::Select(L::Equal(magnitude, one), one, limit), result);

        const F negated = L::FromBits(L::Bits(result) ^ L::SetBits(signBit));
        const M negative = L::IsZero(Signs(x) ^ L::SetBits(signBit));
        result = L::Select(L::And(negative, odd), negated, result);

        const M minus = L::And(L::Less(x, zero), L::Less(magnitude, Infinity()));
        result = L::Select(L::And(minus, L::Not(whole)), NaN(), result);
        result = OrNaN(x, OrNaN(y, result));
        return L::Select(L::Or(L::Equal(x, one), L::Equal(y, zero)), one, result);
    }
};
