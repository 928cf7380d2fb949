#include "expression/CMathProgram.h"

#include "expression/CMathEvaluator.h"
#include "expression/CMathFunction.h"
#include "expression/MathRandom.h"
#include "foundation/OQTruncate.h"
#include "kernels/Maths.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

namespace maths = pxvis::maths;

constexpr double kLogOf10 = 2.302585092994046;

double Trunc(double value, double digits)
{
    if (!(digits >= 0.0 && digits <= 8.0))
        return value;
    const double power = maths::Pow(10.0, digits);
    return static_cast<double>(OQTruncateToInt64(value * power)) / power;
}

// Comparisons are written so that NaN takes the branch that it must: a NaN divisor is not 0, a NaN
// condition is not above 0.
inline void RunStep(const CMathStep& step)
{
    const auto a = [&step] { return *step.a; };
    const auto b = [&step] { return *step.b; };
    double& result = *step.result;
    switch (step.operation) {
    case CMathOp::Add:
        result = a() + b();
        break;
    case CMathOp::Subtract:
    case CMathOp::Greater:
        result = a() - b();
        break;
    case CMathOp::Multiply:
        result = a() * b();
        break;
    case CMathOp::Divide:
        result = b() != 0.0 ? a() / b() : a();
        break;
    case CMathOp::Negate:
        result = -a();
        break;
    case CMathOp::Modulo:
        result = b() != 0.0 ? a() - OQTruncateToInt32(a() / b()) * b() : a();
        break;
    case CMathOp::Power:
    case CMathOp::Pow:
        result = maths::Pow(a(), b());
        break;
    case CMathOp::Less:
        result = b() - a();
        break;
    case CMathOp::Smaller:
        result = std::fabs(a()) > std::fabs(b()) ? b() : a();
        break;
    case CMathOp::Larger:
        result = std::fabs(b()) > std::fabs(a()) ? b() : a();
        break;
    case CMathOp::Plus:
        result = a();
        break;

    case CMathOp::Sin:
        result = maths::Sin(a());
        break;
    case CMathOp::Cos:
        result = maths::Cos(a());
        break;
    case CMathOp::Tan:
        result = maths::Tan(a());
        break;
    case CMathOp::Abs:
        result = std::fabs(a());
        break;
    case CMathOp::Atan:
        result = maths::Atan(a());
        break;
    case CMathOp::Log:
        result = maths::Log(a());
        break;
    case CMathOp::Log10:
        result = maths::Log(a()) / kLogOf10;
        break;
    case CMathOp::AbsSin:
        result = std::fabs(maths::Sin(a()));
        break;
    case CMathOp::AbsCos:
        result = std::fabs(maths::Cos(a()));
        break;
    case CMathOp::Rand:
        result = MathRandom::Rand(a());
        break;
    case CMathOp::RandN:
        result = MathRandom::RandN(a());
        break;
    case CMathOp::If:
        result = a() > 0.0 ? b() : *step.c;
        break;
    case CMathOp::Sign:
        result = a() < 0.0 ? -1.0 : 1.0;
        break;
    case CMathOp::Min:
        result = a() > b() ? b() : a();
        break;
    case CMathOp::Max:
        result = b() > a() ? b() : a();
        break;
    case CMathOp::Equal:
        result = std::fabs(a() - b()) < 0.0001 ? 1.0 : 0.0;
        break;
    case CMathOp::Below:
        result = b() > a() ? 1.0 : 0.0;
        break;
    case CMathOp::Above:
        result = a() > b() ? 1.0 : 0.0;
        break;
    case CMathOp::Int:
        result = OQTruncateToInt32(a());
        break;
    case CMathOp::Frac:
        result = a() - OQTruncateToInt32(a());
        break;
    case CMathOp::Round:
        result = OQTruncateToInt32(a() > 0.0 ? a() + 0.5 : a() - 0.5);
        break;
    case CMathOp::Trunc:
        result = Trunc(a(), b());
        break;

    case CMathOp::And:
        result = a() != 0.0 && b() != 0.0 ? 1.0 : 0.0;
        break;
    case CMathOp::Or:
        result = a() != 0.0 || b() != 0.0 ? 1.0 : 0.0;
        break;
    case CMathOp::Not:
        result = a() != 0.0 ? 0.0 : 1.0;
        break;

    case CMathOp::Number:
    case CMathOp::Variable:
    case CMathOp::VariableAddress:
    case CMathOp::EndAssignment:
    case CMathOp::EndStatement:
        break;
    }
}

int32_t OperandCount(CMathOp operation)
{
    switch (operation) {
    case CMathOp::Negate:
    case CMathOp::Plus:
    case CMathOp::Not:
        return 1;
    default:
        if (operation >= CMathOp::Sin && operation <= CMathOp::Trunc)
            return OQMathFunction(operation).argumentCount;
        return 2;
    }
}

bool Contains(const std::vector<double>& values, const double* value)
{
    const std::less<> before; // of addresses in different arrays, too
    return !before(value, values.data()) && before(value, values.data() + values.size());
}

}

// Runs the stack machine with names of values in its slots.
class CMathProgram::Builder
{
public:
    Builder(CMathProgram& program, const OQArray<CMathEvaluatorOpCode>& opcodes)
        : m_program(program)
    {
        // Neither grows from here on: steps hold addresses.
        size_t numbers = 0;
        size_t pushes = 0;
        for (const CMathEvaluatorOpCode& step : opcodes) {
            numbers += step.opcode == CMathOp::Number ? 1 : 0;
            pushes += step.opcode <= CMathOp::VariableAddress ? 1 : 0;
        }
        const size_t slots = std::min<size_t>(pushes, CMathEvaluator::kStackSlots);
        m_program.m_numbers.reserve(numbers);
        m_program.m_temporaries.resize(slots);
        m_stack.reserve(slots);
    }

    void Take(const CMathEvaluatorOpCode& step)
    {
        switch (step.opcode) {
        case CMathOp::Number:
            m_program.m_numbers.push_back(step.literal);
            m_stack.push_back(&m_program.m_numbers.back());
            break;
        case CMathOp::Variable:
        case CMathOp::VariableAddress:
            m_stack.push_back(step.variable);
            break;
        case CMathOp::Plus:
            break;
        case CMathOp::EndAssignment:
            EndAssignment();
            break;
        case CMathOp::EndStatement:
            m_stack.clear();
            break;
        default:
            Operate(step.opcode);
            break;
        }
    }

    const double* Bottom() const { return m_stack.empty() ? nullptr : m_stack.front(); }

private:
    void Operate(CMathOp operation)
    {
        const size_t count = static_cast<size_t>(OperandCount(operation));
        const size_t slot = m_stack.size() - count;
        CMathStep step { .operation = operation, .result = &m_program.m_temporaries[slot] };
        const double** const operands[] = { &step.a, &step.b, &step.c };
        bool constant = true;
        for (size_t i = 0; i < count; ++i) {
            *operands[i] = m_stack[slot + i];
            constant = constant && m_program.IsNumber(m_stack[slot + i]);
        }
        m_stack.resize(slot);
        if (constant && !MathRandom::DrawsNumber(operation, *step.a)) {
            // The number that its first operand was, which only this slot named.
            step.result = const_cast<double*>(step.a);
            RunStep(step);
            m_stack.push_back(step.result);
            return;
        }
        m_stack.push_back(step.result);
        m_program.m_steps.push_back(step);
    }

    // The last step writes to the variable itself, or, where the value is none of a step, it is
    // copied.
    void EndAssignment()
    {
        const double* value = m_stack.back();
        m_stack.pop_back();
        double* variable = const_cast<double*>(m_stack.back());
        if (m_program.IsTemporary(value))
            m_program.m_steps.back().result = variable;
        else
            m_program.m_steps.push_back(
                { .operation = CMathOp::Plus, .result = variable, .a = value });
    }

    CMathProgram& m_program;
    std::vector<const double*> m_stack;
};

void CMathProgram::Build(const OQArray<CMathEvaluatorOpCode>& opcodes, bool hasResult)
{
    Clear();
    Builder builder(*this, opcodes);
    for (const CMathEvaluatorOpCode& step : opcodes)
        builder.Take(step);
    m_result = hasResult ? builder.Bottom() : nullptr;
}

void CMathProgram::Clear()
{
    m_steps = {};
    m_numbers = {};
    m_temporaries = {};
    m_result = nullptr;
}

double CMathProgram::Run() const
{
    for (const CMathStep& step : m_steps)
        RunStep(step);
    return m_result ? *m_result : 0.0;
}

bool CMathProgram::IsNumber(const double* value) const
{
    return Contains(m_numbers, value);
}

bool CMathProgram::IsTemporary(const double* value) const
{
    return Contains(m_temporaries, value);
}
