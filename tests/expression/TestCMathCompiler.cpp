#include "ExpressionTesting.h"

#include <cmath>

TEST_CASE("Comparisons bind last, then or, and, sums, products, powers, prefixes")
{
    CheckValues({ { u"1<2&3", 0.0 }, // 1 < (2 & 3)
        { u"1|0<3", 2.0 }, // (1 | 0) < 3
        { u"2+0&0", 0.0 }, // (2 + 0) & 0
        { u"1|0&0", 1.0 }, { u"0&0|1", 1.0 }, { u"8-2-1", 5.0 }, { u"2+3*4", 14.0 },
        { u"24/4/2", 3.0 }, { u"7%4*2", 6.0 }, { u"2*3^2", 18.0 }, { u"2^3^2", 64.0 },
        { u"-2^2", 4.0 }, { u"2^-1", 0.5 }, { u"!0+1", 2.0 }, { u"!(0+1)", 0.0 }, { u"-!0", -1.0 },
        { u"5>3>1", 1.0 }, { u"1<2<4", 3.0 }, { u"3{1}2", 2.0 }, { u"-(1+2)*2", -6.0 },
        { u"--+-2", -2.0 }, { u"2--2", 4.0 } });
}

TEST_CASE("Case, blanks and unknown characters don't matter, a figure dash is a minus")
{
    CheckValues({ { u"A=1;X=a+1", 2.0 }, { u" x\t=\r\n1 + 2 ", 3.0 }, { u"5‒3", 2.0 },
        { u"‒3", -3.0 }, { u"SIN(0)", 0.0 }, { u"\"1\"+[2]#é_", 3.0 }, { u"1+\xD83D\xDE00 2", 3.0 },
        { u"x=1;", 1.0 } });
    CHECK(Compiles(OQString(u"1+\0002", 4)));
    CHECK_FALSE(Compiles(u"aéb")); // ends a name as a blank does
    CHECK_FALSE(Compiles(u"1 .5"));
    CHECK_FALSE(Compiles(u"1.5.2"));
    CHECK_FALSE(Compiles(u"x_1=2"));
    CHECK_FALSE(Compiles(u"2x"));
}

TEST_CASE("Numbers are whole part, fraction and power of ten, each rounded on its own")
{
    CheckValues({ { u"3.14159", 3 + 14159 / 1e5 }, { u".5", 0.5 }, { u"5.", 5.0 }, { u"x=.", 0.0 },
        { u"2e", 2.0 }, { u"2e*3", 6.0 }, { u"2e3", 2000.0 }, { u"2e+1", 20.0 },
        { u"1e2.5", 100.0 }, { u"1e1e1", 1e10 }, { u"2E2", 200.0 },
        { u"18446744073709551617", 1.0 }, { u"min(1,5)", 1.0 }, { u"1e400", HUGE_VAL } });
}

TEST_CASE("A fault fails the whole text and keeps the variables met before it")
{
    const auto variables = [](const OQChar* text) {
        CMathEvaluator evaluator;
        evaluator.SetEquation(text);
        INFO(OQString(text).ToUtf8());
        CHECK_FALSE(evaluator.IsCompiled());
        std::string names;
        for (int32_t i = 0; i < evaluator.GetVariableCount(); i++)
            names += evaluator.GetVariableName(i).ToUtf8() + ' ';
        return names;
    };
    CHECK(variables(u"x=1;y=") == "x y ");
    CHECK(variables(u"a=min(b=1,2)") == "a b ");
    CHECK(variables(u"if(a=1,2,3)").empty());
    CHECK(variables(u"x_1=2").empty());
    CHECK(variables(u"a=sqrt(b)") == "a sqrt ");
    CHECK(variables(u"a=min(b)+c") == "a b ");
    CHECK(variables(u"a==b") == "a ");
    CHECK(variables(u"a<=b").empty());
    CHECK(variables(u"").empty());
}

TEST_CASE("Surplus arguments give their first value in an expression and fail in an assignment")
{
    CheckValues({ { u"sin(1,2)", 1.0 }, { u"1+min(2,3,4)", 1.0 }, { u"if(1,2,3,4)", 1.0 } });
    CHECK_FALSE(Compiles(u"a=sin(1,2)"));
    CHECK_FALSE(Compiles(u"sin(1,2);a=1+if(1,2,3,4)"));
    CHECK(Compiles(u"sin(1,2);a=1"));
}

TEST_CASE("A fault is told with its kind, its place and a reason in words")
{
    using Kind = CMathEvaluatorError::Kind;

    struct Fault
    {
        const OQChar* text;
        Kind kind;
        int32_t statement;
        int32_t position;
        const char* reason;
    };

    const Fault faults[] = {
        { u"", Kind::EmptyText, 0, 0, "the text is empty" },
        { u" _ ", Kind::BlankStatement, 1, 0, "the text is blank" },
        { u";", Kind::BlankStatement, 1, 0, "nothing stands before this \";\"" },
        { u"x=1;;y=2", Kind::BlankStatement, 2, 4, "nothing stands before this \";\"" },
        { u"on=1;\r\n", Kind::BlankStatement, 2, 5,
            "the text after the last \";\" is blank: put nothing behind it" },
        { u"=5", Kind::AssignmentTarget, 1, 0, "\"=\" has no variable on its left" },
        { u"a=1;5=x", Kind::AssignmentTarget, 2, 5, "\"=\" has no variable on its left" },
        { u"Sin=1", Kind::AssignmentTarget, 1, 3, "sin is a function: it can't be assigned to" },
        { u"if(a=1,2,3)", Kind::AssignmentTarget, 1, 4,
            "\"=\" may only follow the first word of a statement: compare with equal(a,b)" },
        { u"a<=b", Kind::AssignmentTarget, 1, 2,
            "\"<=\" is not an operator: compare with !above(a,b)" },
        { u"x=", Kind::MissingValue, 1, 2, "nothing follows the \"=\"" },
        { u"1+*2", Kind::MissingValue, 1, 2, "\"*\" stands where a value is expected" },
        { u"1+(", Kind::MissingValue, 1, 3, "the statement ends where a value is expected" },
        { u"()", Kind::MissingValue, 1, 1, "\")\" stands where a value is expected" },
        { u"min(,1)", Kind::MissingValue, 1, 4, "\",\" stands where a value is expected" },
        { u"a&&b", Kind::MissingValue, 1, 2, "\"&&\" is not an operator: use one \"&\"" },
        { u"a==b", Kind::MissingValue, 1, 2, "\"==\" is not an operator: compare with equal(a,b)" },
        { u"1 .5", Kind::MissingOperator, 1, 2, "an operator is missing before \".5\"" },
        { u"1+my_var", Kind::MissingOperator, 1, 5,
            "an operator is missing before \"var\": a name holds letters and digits only" },
        { u"2(3)", Kind::MissingOperator, 1, 1, "an operator is missing before \"(\"" },
        { u"a=b=c", Kind::MisplacedEqual, 1, 3,
            "\"=\" stands inside an expression: compare with equal(a,b)" },
        { u"a=1+Sqrt(4)", Kind::UnknownFunction, 1, 4, "sqrt is not a function" },
        { u"a=sin 1", Kind::FunctionWithoutParenthesis, 1, 2,
            "sin is a function: \"(\" must follow it" },
        { u"1+if(a,b)", Kind::TooFewArguments, 1, 2, "if needs 3 arguments, not 2" },
        { u"a=sin(1,2)", Kind::TooManyArguments, 1, 2, "sin needs 1 argument, not 2" },
        { u"(1+(2)", Kind::UnclosedParenthesis, 1, 0, "this \"(\" has no \")\"" },
        { u"min(1,2", Kind::UnclosedParenthesis, 1, 0, "this call has no \")\"" },
        { u"(1))", Kind::UnopenedParenthesis, 1, 3, "this \")\" closes nothing" },
        { u"(a,b)", Kind::MisplacedComma, 1, 2, "a comma stands outside a function call" },
        { u"min((1,2))", Kind::MisplacedComma, 1, 6, "a comma stands outside a function call" },
    };
    CMathEvaluator evaluator;
    for (const Fault& fault : faults) {
        CMathEvaluatorError error;
        evaluator.SetEquation(fault.text, &error);
        INFO(OQString(fault.text).ToUtf8());
        CHECK_FALSE(evaluator.IsCompiled());
        CHECK(error.kind == fault.kind);
        CHECK(error.statement == fault.statement);
        CHECK(error.position == fault.position);
        CHECK(error.reason.ToUtf8() == fault.reason);
        evaluator.SetEquation(u"x=1", &error);
        CHECK(error.kind == Kind::None);
    }
}

namespace {

OQString Repeat(const std::u16string& text, int count, const std::u16string& tail = u"")
{
    std::u16string result;
    for (int i = 0; i < count; i++)
        result += text;
    result += tail;
    return OQString(result.data(), static_cast<int>(result.size()));
}

}

TEST_CASE("A program that needs exactly the stack's 512 slots runs, one that needs more fails")
{
    const std::u16string closing511(511, u')');
    CHECK(ValueOf(Repeat(u"1+(", 511, u"1" + closing511)) == 512.0);
    CHECK_FALSE(Compiles(Repeat(u"1+(", 512, u"1" + closing511 + u")")));
    // An assignment's address takes a slot.
    const OQString inner = Repeat(u"1+(", 510, u"1" + closing511.substr(1));
    CHECK(ValueOf(u"x=" + inner) == 511.0);
    CHECK_FALSE(Compiles(u"x=1+(" + inner + u")"));
    // So do surplus arguments; each statement starts with an empty stack.
    const OQString surplus = Repeat(u"1,", 511, u"1)");
    CHECK(ValueOf(u"sin(" + surplus) == 1.0);
    CHECK(Compiles(u"sin(" + surplus + u";sin(" + surplus));
    CHECK_FALSE(Compiles(u"sin(1," + surplus));

    CMathEvaluator evaluator;
    CMathEvaluatorError error;
    evaluator.SetEquation(u"sin(1," + surplus, &error);
    CHECK(error.kind == CMathEvaluatorError::Kind::StackOverflow);
    CHECK(error.reason.ToUtf8() == "the statement needs more than 512 stack slots");
}

TEST_CASE("Texts of megabytes neither overflow the thread's stack nor take long")
{
    constexpr int kMany = 400'000;
    CHECK(ValueOf(Repeat(u"-", kMany, u"1")) == 1.0);
    CHECK(ValueOf(Repeat(u"!", kMany, u"0")) == 0.0);
    CHECK(ValueOf(Repeat(u"(", kMany, u"2" + std::u16string(kMany, u')'))) == 2.0);
    CHECK(ValueOf(Repeat(u"sin(", kMany / 10, u"0" + std::u16string(kMany / 10, u')'))) == 0.0);
    CHECK(ValueOf(Repeat(u"1+", kMany, u"1")) == kMany + 1.0);
    CHECK(ValueOf(Repeat(u"x=x+1;", kMany / 2)) == kMany / 2);
    for (const OQChar* text : { u"(", u"-", u"!", u"sin(", u"if(1,", u"1.", u"1,", u"a", u"a(",
             u"=", u"a=", u";", u"x=1;;", u"1^", u"{", u"_", u"e", u"1e", u"\xD800" })
        Compiles(Repeat(text, kMany));
    // Every name another one.
    std::u16string names = u"0";
    for (int i = 0; i < kMany / 4; i++) {
        names += u"+n";
        for (int rest = i; rest > 0; rest /= 10)
            names += static_cast<OQChar>(u'0' + rest % 10);
    }
    CHECK(ValueOf(names.c_str()) == 0.0);
}
