#include "ExpressionTesting.h"

#include "kernels/Maths.h"

#include <cfenv>
#include <cmath>
#include <limits>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Sets x, runs the text and gives x: for arguments that no text can spell.
double Apply(const OQChar* text, double x)
{
    INFO(OQString(text).ToUtf8());
    CMathEvaluator evaluator;
    const int32_t index = evaluator.GetVariable(u"x", true);
    evaluator.Variable(index) = x;
    evaluator.SetEquation(text);
    REQUIRE(evaluator.IsCompiled());
    evaluator.Evaluate();
    return evaluator.Variable(index);
}

uint64_t BitsOf(double value)
{
    return std::bit_cast<uint64_t>(value);
}

}

TEST_CASE("Division and modulo by zero keep the dividend, and a remainder has the dividend's sign")
{
    CheckValues({ { u"x=7/0", 7.0 }, { u"x=7/-0", 7.0 }, { u"x=7%0", 7.0 }, { u"x=-7%3", -1.0 },
        { u"x=7%-3", 1.0 }, { u"x=7.5%2", 1.5 }, { u"x=1/4", 0.25 },
        // the quotient is outside of 32 bits
        { u"x=4294967296%1", 4294967296.0 + 2147483648.0 },
        { u"x=-2147483648%-1", -2147483648.0 - 2147483648.0 } });
    CHECK(std::isnan(Apply(u"x=7/x", std::nan(""))));
    CHECK(std::isnan(Apply(u"x=7%x", std::nan(""))));
}

TEST_CASE("Comparisons give differences, and braces choose by absolute value with the sign kept")
{
    CheckValues({ { u"x=(2<3)", 1.0 }, { u"x=(2<5)", 3.0 }, { u"x=(5<2)", -3.0 },
        { u"x=(2>5)", -3.0 }, { u"if(2<5,1,0)", 1.0 }, { u"x=(-3)}2", -3.0 }, { u"x=(-3){2", 2.0 },
        { u"x=2}(-2)", 2.0 }, { u"x=2{(-2)", 2.0 }, { u"x=(-2)}2", -2.0 },
        { u"s=.5;cs=.25;x=(s-0.01)>cs", (0.5 - 0.01) - 0.25 },
        { u"beat=2;x=(0.02)}(beat*0.15)", 0.3 } });
    // NaN is neither greater nor smaller: a stays.
    CHECK(Apply(u"x=3{x", std::nan("")) == 3.0);
    CHECK(std::isnan(Apply(u"x=x}3", std::nan(""))));
}

TEST_CASE("And, or and not take NaN for true and both zeros for false")
{
    CheckValues(
        { { u"2&3", 1.0 }, { u"2&0", 0.0 }, { u"0&2", 0.0 }, { u"-0&1", 0.0 }, { u"0|-2", 1.0 },
            { u"0|-0", 0.0 }, { u"3|0", 1.0 }, { u"!0", 1.0 }, { u"!-0", 1.0 }, { u"!-.1", 0.0 } });
    CHECK(Apply(u"x=x&1", std::nan("")) == 1.0);
    CHECK(Apply(u"x=1&x", std::nan("")) == 1.0);
    CHECK(Apply(u"x=0&x", std::nan("")) == 0.0);
    CHECK(Apply(u"x=x|0", std::nan("")) == 1.0);
    CHECK(Apply(u"x=0|x", std::nan("")) == 1.0);
    CHECK(Apply(u"x=!x", std::nan("")) == 0.0);
}

TEST_CASE("Minus flips and abs clears the sign bit of every value, plus leaves it alone")
{
    CheckValues({ { u"-0", -0.0 }, { u"--0", 0.0 }, { u"abs(-0)", 0.0 }, { u"+-2", -2.0 } });
    const double nan = std::nan("");
    CHECK(BitsOf(Apply(u"x=-x", nan)) == (BitsOf(nan) ^ 1ull << 63));
    CHECK(BitsOf(Apply(u"x=abs(x)", -nan)) == BitsOf(nan));
}

TEST_CASE("Truncation goes toward zero, in 32 bits for int, frac and round, in 64 for trunc")
{
    CheckValues({ { u"int(-1.9)", -1.0 }, { u"int(-.5)", 0.0 }, { u"int(3e9)", -2147483648.0 },
        { u"int(-3e9)", -2147483648.0 }, { u"frac(-1.5)", -0.5 },
        { u"frac(3e9)", 3e9 + 2147483648.0 }, { u"round(-2.5)", -3.0 }, { u"round(0)", 0.0 },
        { u"round(2.5)", 3.0 }, { u"round(-.4)", 0.0 }, { u"round(.49999999999999994)", 1.0 },
        { u"trunc(3.14159,2)", 3.14 }, { u"trunc(3.14159,9)", 3 + 14159 / 1e5 },
        { u"trunc(3.14159,-1)", 3 + 14159 / 1e5 }, { u"trunc(-3.14159,0)", -3.0 },
        { u"trunc(123456789.128,2)", 12345678912.0 / 100.0 },
        { u"trunc(1e15,8)", -9223372036854775808.0 / 1e8 } });
    const double nan = std::nan("");
    CHECK(Apply(u"x=int(x)", nan) == -2147483648.0);
    CHECK(Apply(u"x=trunc(3.5,x)", nan) == 3.5);
    CHECK(Apply(u"x=trunc(x,0)", nan) == -9223372036854775808.0);
}

TEST_CASE("Selections and tests follow their comparisons for ties, zero and NaN")
{
    CheckValues({ { u"if(0,1,2)", 2.0 }, { u"if(-1,1,2)", 2.0 }, { u"if(.1,1,2)", 1.0 },
        { u"sign(0)", 1.0 }, { u"sign(-0)", 1.0 }, { u"sign(-.1)", -1.0 },
        { u"equal(1,1.00005)", 1.0 }, { u"equal(1,1.0002)", 0.0 }, { u"equal(1.00005,1)", 1.0 },
        { u"below(1,2)", 1.0 }, { u"below(2,2)", 0.0 }, { u"above(2,1)", 1.0 },
        { u"above(2,2)", 0.0 }, { u"min(0,-0)", 0.0 }, { u"max(-0,0)", -0.0 }, { u"min(2,1)", 1.0 },
        { u"max(1,2)", 2.0 } });
    const double nan = std::nan("");
    CHECK(Apply(u"x=if(x,1,2)", nan) == 2.0);
    CHECK(Apply(u"x=sign(x)", nan) == 1.0);
    CHECK(Apply(u"x=min(1,x)", nan) == 1.0);
    CHECK(std::isnan(Apply(u"x=max(x,1)", nan)));
    CHECK(Apply(u"x=equal(x,x)", nan) == 0.0);
    CHECK(Apply(u"x=equal(x,x)", kInfinity) == 0.0);
}

TEST_CASE("The functions call the engine's own maths, and log10 is a quotient of logarithms")
{
    namespace maths = pxvis::maths;
    CheckValues({ { u"sin(2)", maths::Sin(2) }, { u"cos(2)", maths::Cos(2) },
        { u"tan(2)", maths::Tan(2) }, { u"atan(2)", maths::Atan(2) }, { u"log(2)", maths::Log(2) },
        { u"log10(7)", maths::Log(7) / maths::Log(10) }, { u"log10(1000)", 2.9999999999999996 },
        { u"abssin(4)", -maths::Sin(4) }, { u"abscos(2)", -maths::Cos(2) },
        { u"pow(2,.5)", maths::Pow(2, .5) }, { u"2^.5", maths::Pow(2, .5) },
        { u"log(0)", -kInfinity } });
    CHECK(std::isnan(ValueOf(u"(-8)^(1/3)")));
    CHECK(std::isnan(ValueOf(u"log(-1)")));
}

TEST_CASE("Random numbers come in steps of 1/8192 from a generator seeded once from the clock")
{
    OQEngineContext context;
    context.virtualClock = true;
    context.virtualNanoseconds = 1'000'000'000'000;
    const OQEngineContextScope scope(&context);

    // Nothing to draw from: the argument stays, and the generator is neither seeded nor moved.
    CheckValues({ { u"rand(0)", 0.0 }, { u"rand(.00005)", 0.00005 }, { u"randn(-0)", -0.0 },
        { u"randn(-.00005)", -0.00005 } });
    CHECK(context.randomState == 1);
    CHECK_FALSE(context.equationsSeeded);

    OQEngineContext copy = context;
    const auto draw = [&copy] {
        const OQEngineContextScope copyScope(&copy);
        OQSeedRandForEquations();
        const int32_t high = OQRand(); // the first call gives the upper bits
        return high * 32768 + OQRand();
    };
    CHECK(ValueOf(u"rand(5)") == draw() % 40960 / 8192.0);
    CHECK(ValueOf(u"rand(-5)") == draw() % 40960 / 8192.0);
    CHECK(ValueOf(u"randn(5)") == draw() % 81920 / 8192.0 - 5.0);
    CHECK(ValueOf(u"randn(-5)") == draw() % 81920 / 8192.0 + 5.0);
    CHECK(ValueOf(u"rand(-1/8192)") == draw() % 1 / 8192.0);
    CHECK(ValueOf(u"rand(1e9)") == draw() / 8192.0); // the limit is -2^31, beyond any draw
    CHECK(std::isnan(Apply(u"x=randn(x)", std::nan(""))));
    draw();
    CHECK(ValueOf(u"if(1,1,rand(5))") == 1.0); // the arm not taken draws as well
    draw();
    CHECK(context.randomState == copy.randomState);
}

TEST_CASE("An equation that isn't compiled changes nothing, and an assignment has no result")
{
    CMathEvaluator evaluator;
    CHECK(evaluator.Evaluate() == 0.0);
    evaluator.SetEquation(u"a=1;5");
    CHECK(evaluator.Evaluate() == 5.0);
    CHECK(evaluator.HasResult());
    evaluator.SetEquation(u"5;a=2");
    CHECK_FALSE(evaluator.HasResult());
    CHECK(evaluator.Evaluate() == 0.0);
    evaluator.SetEquation(u"a=3;b=");
    CHECK_FALSE(evaluator.IsCompiled());
    CHECK(evaluator.Evaluate() == 0.0);
    CHECK(evaluator.Variable(evaluator.GetVariable(u"a", false)) == 2.0);
}

TEST_CASE("What is worked out when an equation is compiled doesn't depend on the host's rounding")
{
    CMathEvaluator usual;
    usual.SetEquation(u"1/3+0.1/sin(2)");
    std::fesetround(FE_UPWARD);
    CMathEvaluator upward;
    upward.SetEquation(u"1/3+0.1/sin(2)");
    CHECK(std::fegetround() == FE_UPWARD);
    std::fesetround(FE_TONEAREST);
    CHECK(upward.Evaluate() == usual.Evaluate());
}

TEST_CASE("Variables carry over from run to run and from compile to compile, under any case")
{
    CMathEvaluator evaluator;
    evaluator.SetEquation(u"T=(t+1)%3;");
    const int32_t t = evaluator.GetVariable(u"T", false);
    CHECK(evaluator.GetVariable(u"t", true) == t);
    for (const double expected : { 1.0, 2.0, 0.0, 1.0 }) {
        evaluator.Evaluate();
        CHECK(evaluator.Variable(t) == expected);
    }
    evaluator.SetEquation(u"u=T*10");
    evaluator.Evaluate();
    CHECK(evaluator.Variable(evaluator.GetVariable(u"u", false)) == 10.0);
    CHECK(evaluator.GetVariableCount() == 2);
    CHECK(evaluator.GetVariable(u"missing", false) == -1);
}

TEST_CASE("A variable doesn't move when its table grows")
{
    CMathEvaluator evaluator;
    evaluator.SetEquation(u"first=first+1");
    double& first = evaluator.Variable(evaluator.GetVariable(u"first", false));
    for (int i = 0; i < 1000; i++) {
        const std::u16string name { u'v', static_cast<OQChar>(u'a' + i / 100),
            static_cast<OQChar>(u'0' + i / 10 % 10), static_cast<OQChar>(u'0' + i % 10) };
        evaluator.GetVariable(OQString(name.c_str()), true);
    }
    evaluator.Evaluate();
    CHECK(first == 1.0);
    CHECK(evaluator.GetVariableCount() == 1001);
}

TEST_CASE("AddVariables shares what is missing by name, UseVariables the whole table")
{
    CVariableTable shared;
    shared.Variable(shared.GetVariable(u"beat", true)) = 3.0;
    shared.Variable(shared.GetVariable(u"mine", true)) = 4.0;

    CMathEvaluator taker;
    taker.Variable(taker.GetVariable(u"mine", true)) = 7.0;
    taker.AddVariables(shared);
    taker.SetEquation(u"beat=beat+mine;own=1");
    taker.Evaluate();
    CHECK(shared.Variable(shared.GetVariable(u"beat", false)) == 10.0);
    CHECK(shared.Variable(shared.GetVariable(u"mine", false)) == 4.0);
    CHECK(shared.GetVariable(u"own", false) == -1);
    // Gives up what it shares without destroying it.
    taker.ClearVariables();
    CHECK_FALSE(taker.IsCompiled());
    CHECK(taker.GetVariableCount() == 0);
    CHECK(shared.Variable(shared.GetVariable(u"beat", false)) == 10.0);

    CMathEvaluator frame;
    CMathEvaluator point;
    frame.SetEquation(u"1");
    frame.UseVariables(shared);
    CHECK_FALSE(frame.IsCompiled());
    point.UseVariables(shared);
    frame.SetEquation(u"t=t+1");
    point.SetEquation(u"x=t*2");
    frame.Evaluate();
    point.Evaluate();
    CHECK(point.Variable(point.GetVariable(u"x", false)) == 2.0);
    CHECK(&frame.GetVariableTable() == &shared);

    // An object that is told to use its own table keeps it.
    CMathEvaluator self;
    self.SetEquation(u"x=1");
    self.UseVariables(self.GetVariableTable());
    CHECK_FALSE(self.IsCompiled());
    CHECK(self.GetVariable(u"x", false) == 0);
}
