#include "kernels/Maths.h"

#include <doctest/doctest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <span>
#include <utility>

using namespace pxvis;
using Unary = double (*)(double);

// lost: the exact result minus the rounded one, in ulp of the rounded one
struct UnaryReference
{
    double x;
    double rounded;
    double lost;
};

struct BinaryReference
{
    double x;
    double y;
    double rounded;
    double lost;
};

#include "kernels/MathsReference.inc"

static constexpr double infinity = std::numeric_limits<double>::infinity();
static constexpr double quietNaN = std::numeric_limits<double>::quiet_NaN();
static constexpr double denormal = 5e-324;
static constexpr double greatest = std::numeric_limits<double>::max();

static uint64_t Bits(double value)
{
    return std::bit_cast<uint64_t>(value);
}

static double ErrorInUlp(double result, double rounded, double lost)
{
    const double magnitude = std::fabs(rounded);
    const double ulp = magnitude == greatest ? magnitude - std::nextafter(magnitude, 0.0)
                                             : std::nextafter(magnitude, infinity) - magnitude;
    return std::fabs((result - rounded) / ulp - lost);
}

static void CheckWithin(std::span<const UnaryReference> rows, Unary function)
{
    for (const UnaryReference& row : rows) {
        const double error = ErrorInUlp(function(row.x), row.rounded, row.lost);
        CAPTURE(row.x);
        CHECK(error < 0.9);
    }
}

TEST_CASE("Results are within 0.9 ulp of exact ones, also for huge, tiny and awkward arguments")
{
    SUBCASE("sin")
    {
        CheckWithin(sinReference, maths::Sin);
    }
    SUBCASE("cos")
    {
        CheckWithin(cosReference, maths::Cos);
    }
    SUBCASE("tan")
    {
        CheckWithin(tanReference, maths::Tan);
    }
    SUBCASE("atan")
    {
        CheckWithin(atanReference, maths::Atan);
    }
    SUBCASE("acos")
    {
        CheckWithin(acosReference, maths::Acos);
    }
    SUBCASE("log")
    {
        CheckWithin(logReference, maths::Log);
    }
    SUBCASE("exp")
    {
        CheckWithin(expReference, maths::Exp);
    }
    SUBCASE("pow")
    {
        for (const BinaryReference& row : powReference) {
            const double error = ErrorInUlp(maths::Pow(row.x, row.y), row.rounded, row.lost);
            CAPTURE(row.x);
            CAPTURE(row.y);
            CHECK(error < 0.9);
        }
    }
}

TEST_CASE("Powers that a double can hold are exact")
{
    double ten = 1.0;
    for (int n = 0; n <= 22; n++, ten *= 10.0)
        CHECK(maths::Pow(10.0, n) == ten);

    constexpr uint64_t limit = uint64_t { 1 } << 53;
    for (int base = 2; base <= 1000; base++) {
        int exponent = 1;
        for (uint64_t whole = base; whole <= limit; whole *= base, exponent++) {
            const double power = static_cast<double>(whole);
            CAPTURE(base);
            CAPTURE(exponent);
            REQUIRE(maths::Pow(base, exponent) == power);
            REQUIRE(maths::Pow(-base, exponent) == (exponent % 2 != 0 ? -power : power));
            REQUIRE(maths::Pow(power, 1.0) == power);
            if (exponent % 2 == 0)
                REQUIRE(maths::Pow(power, 0.5) == std::sqrt(power));
            if (exponent % 4 == 0)
                REQUIRE(maths::Pow(power, 0.75) * std::sqrt(std::sqrt(power)) == power);
        }
    }
    for (int n = -1074; n <= 1023; n++) {
        CAPTURE(n);
        REQUIRE(maths::Pow(2.0, n) == std::ldexp(1.0, n));
        REQUIRE(maths::Pow(0.25, -0.5 * n) == std::ldexp(1.0, n));
    }
}

static void CheckBits(Unary function, std::initializer_list<std::pair<double, double>> cases)
{
    for (const std::pair<double, double>& row : cases) {
        CAPTURE(row.first);
        CHECK(Bits(function(row.first)) == Bits(row.second));
    }
}

TEST_CASE("Special arguments give what the C library gives, and NaN results are one constant")
{
    CheckBits(maths::Sin,
        { { 0.0, 0.0 }, { -0.0, -0.0 }, { infinity, quietNaN }, { -infinity, quietNaN },
            { denormal, denormal } });
    CheckBits(maths::Cos, { { 0.0, 1.0 }, { -0.0, 1.0 }, { -infinity, quietNaN } });
    CheckBits(maths::Tan,
        { { 0.0, 0.0 }, { -0.0, -0.0 }, { infinity, quietNaN }, { -denormal, -denormal } });
    CheckBits(maths::Atan,
        { { 0.0, 0.0 }, { -0.0, -0.0 }, { infinity, 0x1.921fb54442d18p0 },
            { -infinity, -0x1.921fb54442d18p0 }, { -greatest, -0x1.921fb54442d18p0 },
            { denormal, denormal } });
    CheckBits(maths::Acos,
        { { 1.0, 0.0 }, { -1.0, 0x1.921fb54442d18p1 }, { -0.0, 0x1.921fb54442d18p0 },
            { 0x1.0000000000001p0, quietNaN }, { -infinity, quietNaN } });
    CheckBits(maths::Log,
        { { 1.0, 0.0 }, { 0.0, -infinity }, { -0.0, -infinity }, { -denormal, quietNaN },
            { infinity, infinity }, { -infinity, quietNaN } });
    CheckBits(maths::Exp,
        { { 0.0, 1.0 }, { -0.0, 1.0 }, { infinity, infinity }, { -infinity, 0.0 },
            { greatest, infinity }, { -greatest, 0.0 },
            { 709.782712893384, 0x1.fffffffffff2ap1023 }, { 709.7827128933841, infinity },
            { -745.1332191019411, denormal }, { -745.1332191019412, 0.0 } });

    const double negativeNaN = -quietNaN;
    for (Unary function :
        { maths::Sin, maths::Cos, maths::Tan, maths::Atan, maths::Acos, maths::Log, maths::Exp })
        CHECK(Bits(function(negativeNaN)) == Bits(quietNaN));
}

TEST_CASE("Special arguments of pow give what the C library gives")
{
    struct Case
    {
        double x;
        double y;
        double result;
    };

    // Whole numbers end at 2^53 being odd, and fractions at 2^52.
    const Case cases[] = { { 0.0, 3.0, 0.0 }, { -0.0, 3.0, -0.0 }, { -0.0, 2.0, 0.0 },
        { -0.0, 0.5, 0.0 }, { 0.0, -3.0, infinity }, { -0.0, -3.0, -infinity },
        { -0.0, -2.0, infinity }, { -0.0, -0.5, infinity }, { 0.0, -infinity, infinity },
        { -0.0, infinity, 0.0 }, { -1.0, infinity, 1.0 }, { -1.0, -infinity, 1.0 },
        { 1.0, quietNaN, 1.0 }, { quietNaN, 0.0, 1.0 }, { quietNaN, -0.0, 1.0 },
        { infinity, 0.0, 1.0 }, { 0.0, 0.0, 1.0 }, { -0.0, -0.0, 1.0 },
        { -8.0, 1.0 / 3.0, quietNaN }, { -denormal, 0.5, quietNaN }, { -2.0, 0x1p-1074, quietNaN },
        { 0.5, -infinity, infinity }, { -0.5, infinity, 0.0 }, { 2.0, infinity, infinity },
        { -2.0, -infinity, 0.0 }, { infinity, denormal, infinity }, { infinity, -denormal, 0.0 },
        { -infinity, 3.0, -infinity }, { -infinity, 2.0, infinity }, { -infinity, 0.5, infinity },
        { -infinity, -3.0, -0.0 }, { -infinity, -2.0, 0.0 }, { -infinity, -0.5, 0.0 },
        { quietNaN, 1.0, quietNaN }, { 2.0, quietNaN, quietNaN },
        { -quietNaN, -quietNaN, quietNaN }, { -infinity, quietNaN, quietNaN },
        { 2.0, 1024.0, infinity }, { -2.0, 1025.0, -infinity }, { -2.0, -1077.0, -0.0 },
        { 2.0, -1075.0, 0.0 }, { greatest, greatest, infinity }, { denormal, greatest, 0.0 },
        { -1.0, 0x1.fffffffffffffp52, -1.0 }, { -1.0, 0x1p53, 1.0 }, { -1.0, -greatest, 1.0 },
        { -1.0, 0x1.0000000000001p52, -1.0 }, { -1.0, 0x1.fffffffffffffp51, quietNaN },
        { 0x1.fffffffffffffp-1, 0x1p70, 0.0 }, { 0x1.0000000000001p0, greatest, infinity },
        { 0x1.0000000000001p0, -greatest, 0.0 }, { 3.0, denormal, 1.0 } };
    for (const Case& test : cases) {
        CAPTURE(test.x);
        CAPTURE(test.y);
        CHECK(Bits(maths::Pow(test.x, test.y)) == Bits(test.result));
    }
}

// Numbers of several sizes in turn, the same everywhere.
static double Argument(uint32_t index)
{
    const uint64_t mixed = (index + 1) * 0x9e3779b97f4a7c15;
    const double unit = static_cast<double>(mixed >> 12) * 0x1p-52;
    const double sizes[] = { 1.0, 2.0, 30.0, 700.0, 1e7, 1e30 };
    return (unit - 0.5) * sizes[index % std::size(sizes)];
}

TEST_CASE("Odd functions are odd and even ones even, to the last bit")
{
    for (uint32_t i = 0; i < 2000; i++) {
        const double x = Argument(i);
        CAPTURE(x);
        for (Unary odd : { maths::Sin, maths::Tan, maths::Atan })
            REQUIRE(Bits(odd(-x)) == Bits(-odd(x)));
        REQUIRE(Bits(maths::Cos(-x)) == Bits(maths::Cos(x)));
        REQUIRE(Bits(maths::Pow(-x, 2.0)) == Bits(maths::Pow(x, 2.0)));
    }
}

// Pictures are promised to be the same bits from every build. Fused multiply-adds, reordered sums,
// another polynomial or wider registers change some of these results in the last place.
TEST_CASE("The last bits are the same in every build")
{
    const auto hash = [](auto function) {
        uint64_t sum = 0xcbf29ce484222325;
        for (uint32_t i = 0; i < 4096; i++)
            sum = (sum ^ Bits(function(Argument(i)))) * 0x100000001b3;
        return sum;
    };
    CHECK(hash(maths::Sin) == 0x10b2cbd71aba4be1);
    CHECK(hash(maths::Cos) == 0xc88ccd7e80963aaf);
    CHECK(hash(maths::Tan) == 0x7183fd44a586665d);
    CHECK(hash(maths::Atan) == 0x7ff56645af6e2cfb);
    CHECK(hash(maths::Acos) == 0x21a52a70791e4802);
    CHECK(hash([](double x) { return maths::Log(std::fabs(x)); }) == 0xab390e849aec0b3d);
    CHECK(hash(maths::Exp) == 0x088f661f95626d71);
    CHECK(hash([](double x) { return maths::Pow(std::fabs(x), 1.7); }) == 0xcef06baf7e419947);
}
