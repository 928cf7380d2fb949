#include "ExpressionTesting.h"

#include "foundation/OQTruncate.h"
#include "kernels/Maths.h"

#include <cmath>
#include <optional>
#include <random>
#include <string_view>

namespace {

// Reads an equation without blanks by plain recursion and computes as it goes: a second reading of
// the grammar, independent of the compiler's. The variables are a = 3 and b = -2.
class DirectEvaluator
{
public:
    explicit DirectEvaluator(const std::string& text)
        : m_next(text.c_str())
    {
    }

    std::optional<double> Run()
    {
        const double value = Level(0);
        return m_failed || *m_next ? std::nullopt : std::optional(value);
    }

private:
    static constexpr std::string_view kLevels[] = { "<>{}", "|", "&", "+-", "*/%", "^" };

    double Level(size_t level)
    {
        if (level == std::size(kLevels))
            return Unary();
        double a = Level(level + 1);
        while (*m_next && kLevels[level].find(*m_next) != std::string_view::npos) {
            const char op = *m_next++;
            a = Compute(op, a, Level(level + 1));
        }
        return a;
    }

    static double Compute(char op, double a, double b)
    {
        switch (op) {
        case '<':
            return b - a;
        case '{':
            return std::fabs(b) < std::fabs(a) ? b : a;
        case '}':
            return std::fabs(a) < std::fabs(b) ? b : a;
        case '|':
            return (a != 0) + (b != 0) > 0;
        case '&':
            return (a != 0) + (b != 0) > 1;
        case '+':
            return a + b;
        case '*':
            return a * b;
        case '/':
            return b == 0 ? a : a / b;
        case '%':
            if (b == 0)
                return a;
            return a - OQTruncateToInt32(a / b) * b;
        case '^':
            return pxvis::maths::Pow(a, b);
        default:
            return a - b;
        }
    }

    double Unary()
    {
        const char character = *m_next;
        m_next += character != 0;
        if (character == '-')
            return -Unary();
        if (character == '!')
            return Unary() == 0;
        if (character == '(')
            return Closed(Level(0));
        if (character == 'a')
            return 3;
        if (character == 'b')
            return -2;
        if (character >= '0' && character <= '9') {
            double value = character - '0';
            for (; *m_next >= '0' && *m_next <= '9'; m_next++)
                value = value * 10 + (*m_next - '0');
            return value;
        }
        if (character != 'm' || std::string_view(m_next, 3) != "in(") {
            m_failed = true;
            return 0;
        }
        m_next += 3;
        const double a = Level(0);
        m_failed |= *m_next != ',';
        m_next += *m_next == ',';
        const double b = Level(0);
        return Closed(a > b ? b : a);
    }

    double Closed(double value)
    {
        m_failed |= *m_next != ')';
        m_next += *m_next == ')';
        return value;
    }

    const char* m_next;
    bool m_failed = false;
};

// Mostly right: now and then a piece is left out or one too many.
std::string RandomEquation(std::mt19937& random, int depth)
{
    const auto oneOf = [&random](std::string_view choice) {
        return std::string(1, choice[random() % choice.size()]);
    };
    std::string text;
    while (random() % 3 == 0)
        text += oneOf("-!");
    const uint32_t kind = depth > 0 ? random() % 8 : 0;
    if (kind < 4)
        text += oneOf("ab0123456789");
    else if (kind < 7)
        text += "(" + RandomEquation(random, depth - 1) + ")";
    else
        text += "min(" + RandomEquation(random, depth - 1) + "," + RandomEquation(random, depth - 1)
            + ")";
    if (random() % 64 == 0)
        text += oneOf("()!");
    if (random() % 4 != 0)
        text += oneOf("<>{}|&+-*/%^") + RandomEquation(random, depth - 1);
    return text;
}

}

TEST_CASE("Random equations, right and wrong ones, agree with a direct evaluator")
{
    std::mt19937 random(1);
    int compiled = 0;
    int refused = 0;
    while (compiled < 20000 || refused < 5000) {
        const std::string text = RandomEquation(random, 4);
        CMathEvaluator evaluator;
        evaluator.Variable(evaluator.GetVariable(u"a", true)) = 3;
        evaluator.Variable(evaluator.GetVariable(u"b", true)) = -2;
        evaluator.SetEquation(OQString::FromUtf8(text));
        const std::optional<double> expected = DirectEvaluator(text).Run();
        INFO(text);
        REQUIRE(evaluator.IsCompiled() == expected.has_value());
        (expected ? compiled : refused)++;
        if (!expected)
            continue;
        const double value = evaluator.Evaluate();
        if (std::isnan(*expected))
            REQUIRE(std::isnan(value));
        else
            REQUIRE(std::bit_cast<uint64_t>(value) == std::bit_cast<uint64_t>(*expected));
    }
}
