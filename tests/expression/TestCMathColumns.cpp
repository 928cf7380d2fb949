#include "expression/CMathColumns.h"

#include "foundation/OQEngineContext.h"
#include "kernels/KernelForm.h"

#include <doctest/doctest.h>
#include <hwy/targets.h>

#include <bit>
#include <cmath>
#include <random>
#include <string>

namespace {

constexpr int32_t lanes = CMathColumns::kLanes;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

// The equation with its variables d and r, which are given for each point, and x, which is read.
struct Points
{
    explicit Points(const std::string& text)
    {
        for (double** variable : { &d, &r, &x, &c }) {
            const OQChar name[] = { u"drxc"[m_named++], 0 };
            *variable = &equation.Variable(equation.GetVariable(name, true));
        }
        *c = 3;
        equation.SetEquation(OQString::FromUtf8(text));
        REQUIRE(equation.IsCompiled());
    }

    CMathEvaluator equation;
    double* d;
    double* r;
    double* x;
    double* c;

private:
    size_t m_named = 0;
};

uint64_t BitsOf(double value)
{
    return std::bit_cast<uint64_t>(std::isnan(value) ? nan : value);
}

double AnyValue(std::mt19937& random)
{
    static constexpr double special[] = { 0.0, -0.0, 1.0, -1.0, 0.5, 2147483647.5, -2147483648.5,
        1e15, 1e300, 5e-324, nan, infinity, -infinity };
    if (random() % 8 == 0)
        return special[random() % std::size(special)];
    const double value = static_cast<double>(static_cast<int32_t>(random())) / 0x1p24;
    return random() % 8 == 0 ? value * 1e9 : value / (1 + random() % 100);
}

std::string RandomValue(std::mt19937& random, int depth)
{
    static constexpr const char* leaves[] = { "d", "r", "x", "c", "0.3", "7", "100" };
    static constexpr const char* one[] = { "sin", "cos", "tan", "abs", "atan", "log", "log10",
        "abssin", "abscos", "sign", "int", "frac", "round", "-", "!" };
    static constexpr const char* two[]
        = { "min", "max", "equal", "below", "above", "pow", "trunc" };
    const auto inner = [&] { return "(" + RandomValue(random, depth - 1) + ")"; };
    if (depth == 0 || random() % 6 == 0)
        return leaves[random() % std::size(leaves)];
    switch (random() % 8) {
    case 0:
        return "if" + std::string("(") + RandomValue(random, depth - 1) + ","
            + RandomValue(random, depth - 1) + "," + RandomValue(random, depth - 1) + ")";
    case 1:
    case 2:
        return one[random() % std::size(one)] + inner();
    case 3:
        return two[random() % std::size(two)] + std::string("(") + RandomValue(random, depth - 1)
            + "," + RandomValue(random, depth - 1) + ")";
    case 4:
        return random() % 4 ? "rand(" + std::to_string(random() % 5) + ")" : "randn(1.5)";
    default:
        return inner() + std::string(1, "+-*/%^<>{}|&"[random() % 12]) + inner();
    }
}

// Assignments to d, r and x; now and then x is read before it is written.
std::string RandomProgram(std::mt19937& random)
{
    std::string text;
    if (random() % 8)
        text = "x=" + RandomValue(random, 0) + ";";
    for (uint32_t left = 1 + random() % 4; left > 0; --left)
        text += std::string(1, "drx"[random() % 3]) + "=" + RandomValue(random, 4) + ";";
    return text;
}

}

TEST_CASE("Random programs give in columns what they give point by point, on every instruction set")
{
    int inColumns = 0;
    for (int64_t left = hwy::SupportedTargets(); left != 0; left &= left - 1) {
        hwy::SetSupportedTargetsForTest(left & -left);
        std::mt19937 random(1);
        for (int program = 0; program < 1500; ++program) {
            const std::string text = RandomProgram(random);
            INFO(text << " on " << hwy::TargetName(left & -left));
            Points together(text);
            Points single(text);
            CMathColumns columns(together.equation, { together.d, together.r }, { together.x });
            inColumns += columns.RunsInColumns() ? 1 : 0;

            OQEngineContext forTogether { .virtualClock = true };
            OQEngineContext forSingle { .virtualClock = true };
            for (const int32_t count : { lanes, 1 + static_cast<int32_t>(random() % lanes) }) {
                double given[2][lanes];
                for (int32_t i = 0; i < count; ++i) {
                    columns.Column(together.d)[i] = given[0][i] = AnyValue(random);
                    columns.Column(together.r)[i] = given[1][i] = AnyValue(random);
                }
                {
                    const OQEngineContextScope scope(&forTogether);
                    columns.Run(count);
                }
                const OQEngineContextScope scope(&forSingle);
                bool equal = true;
                for (int32_t i = 0; i < count; ++i) {
                    *single.d = given[0][i];
                    *single.r = given[1][i];
                    single.equation.Evaluate();
                    equal = equal && BitsOf(*single.d) == BitsOf(columns.Column(together.d)[i])
                        && BitsOf(*single.r) == BitsOf(columns.Column(together.r)[i])
                        && BitsOf(*single.x) == BitsOf(columns.Column(together.x)[i]);
                }
                REQUIRE(equal);
                REQUIRE(BitsOf(*single.x) == BitsOf(*together.x));
                REQUIRE(BitsOf(*single.d) == BitsOf(*together.d));
                REQUIRE(forSingle.randomState == forTogether.randomState);
            }
        }
    }
    hwy::SetSupportedTargetsForTest(0);
    CHECK(inColumns > 1000);
}

TEST_CASE(
    "What carries a value from point to point, or draws below no fixed limit, runs point by point")
{
    const auto inColumns = [](const std::string& text) {
        Points points(text);
        return CMathColumns(points.equation, { points.d, points.r }, { points.x }).RunsInColumns();
    };
    CHECK(inColumns("d=d*0.95"));
    CHECK(inColumns("t=d*2;d=t+c;x=t"));
    CHECK(inColumns("d=d+rand(2*3)+rand(0)"));
    CHECK(inColumns("x;d=r"));
    CHECK_FALSE(inColumns("x=x+1"));
    CHECK_FALSE(inColumns("d=t;t=r"));
    CHECK_FALSE(inColumns("d=rand(d)"));
    CHECK_FALSE(inColumns("d=rand(c)"));

    std::string wide = "d=";
    for (int i = 0; i < 300; ++i)
        wide += (i > 0 ? "+v" : "v") + std::string(1, static_cast<char>('a' + i % 26)) + "x"
            + std::to_string(i);
    CHECK_FALSE(inColumns(wide));
}

TEST_CASE("An equation that isn't compiled leaves each point as it is given")
{
    CMathEvaluator equation;
    double& d = equation.Variable(equation.GetVariable(u"d", true));
    double& x = equation.Variable(equation.GetVariable(u"x", true));
    x = 5;
    equation.SetEquation(u"d=(");
    CMathColumns columns(equation, { &d }, { &x });
    columns.Column(&d)[0] = 1;
    columns.Column(&d)[1] = 2;
    columns.Run(2);
    CHECK(columns.Column(&d)[0] == 1);
    CHECK(columns.Column(&x)[1] == 5);
    CHECK(d == 2);
    columns.Run(0);
    CHECK(d == 2);
}
