#include "expression/CMathEvaluator.h"

#include "expression/CMathCompiler.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQTruncate.h"
#include "kernels/Maths.h"

#include <bit>
#include <cmath>

namespace {

namespace maths = pxvis::maths;

constexpr double kLogOf10 = 2.302585092994046;
constexpr double kRandomSteps = 8192.0; // random numbers come in steps of 1/8192

// limit isn't 0. The result is 0 to |limit| - 1, in steps.
double RandomBelow(int32_t limit)
{
    OQSeedRandForEquations();
    const int32_t high = OQRand();
    const int32_t low = OQRand();
    const int32_t random = (high << 15) | low; // 30 bits
    return (random % limit) * (1.0 / kRandomSteps);
}

double Rand(double limit)
{
    const int32_t steps = OQTruncateToInt32(limit * kRandomSteps);
    return steps == 0 ? limit : RandomBelow(steps);
}

double RandN(double limit)
{
    const int32_t steps = OQTruncateToInt32((limit + limit) * kRandomSteps);
    return steps == 0 ? limit : RandomBelow(steps) - limit;
}

double Trunc(double value, double digits)
{
    if (!(digits >= 0.0 && digits <= 8.0))
        return value;
    const double power = maths::Pow(10.0, digits);
    return static_cast<double>(OQTruncateToInt64(value * power)) / power;
}

// Nanoseconds of a step on a slow machine, measured and rounded up; what bounds a stranger's
// equation.
int64_t WorkOf(CMathOp opcode)
{
    switch (opcode) {
    case CMathOp::Power:
    case CMathOp::Pow:
    case CMathOp::Trunc:
        return 60;
    case CMathOp::Sin:
    case CMathOp::Cos:
    case CMathOp::Tan:
    case CMathOp::Atan:
    case CMathOp::Log:
    case CMathOp::Log10:
    case CMathOp::AbsSin:
    case CMathOp::AbsCos:
    case CMathOp::Rand:
    case CMathOp::RandN:
        return 25;
    default:
        return 3;
    }
}

double AsDouble(double* address)
{
    return std::bit_cast<double>(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(address)));
}

double* AsAddress(double slot)
{
    return reinterpret_cast<double*>(static_cast<uintptr_t>(std::bit_cast<uint64_t>(slot)));
}

}

CMathEvaluator::CMathEvaluator()
    : m_table(new CVariableTable)
{
}

CMathEvaluator::~CMathEvaluator()
{
    if (m_ownsTable)
        delete m_table;
}

void CMathEvaluator::SetEquation(const OQString& text, CMathEvaluatorError* error)
{
    DropProgram();
    CMathCompiler compiler(*m_table, m_opcodes, error);
    m_compiled = compiler.Compile(text);
    m_hasResult = compiler.HasResult();
    for (const CMathEvaluatorOpCode& step : m_opcodes)
        m_work += m_compiled ? WorkOf(step.opcode) : 0;
}

int32_t CMathEvaluator::GetVariable(const OQString& name, bool create)
{
    return m_table->GetVariable(name, create);
}

void CMathEvaluator::AddVariables(const CVariableTable& table)
{
    m_table->AddVariables(table);
}

void CMathEvaluator::UseVariables(CVariableTable& table)
{
    if (m_ownsTable && m_table != &table)
        delete m_table;
    m_ownsTable = m_ownsTable && m_table == &table;
    m_table = &table;
    DropProgram();
}

void CMathEvaluator::ClearVariables()
{
    DropProgram();
    m_table->ClearVariables();
}

void CMathEvaluator::DropProgram()
{
    m_opcodes.Clear();
    m_compiled = false;
    m_hasResult = false;
    m_work = 0;
}

// The compiler has made sure that the stack neither overflows nor runs dry and that EndAssignment
// finds an address, so the loop checks nothing. Comparisons are written so that NaN takes the
// branch that it must: a NaN divisor is not 0, a NaN condition is not above 0.
double CMathEvaluator::Evaluate()
{
    if (!m_compiled)
        return 0.0;

    double* end = m_stack; // behind the top of the stack
    for (const CMathEvaluatorOpCode& step : m_opcodes) {
        switch (step.opcode) {
        case CMathOp::Number:
            *end++ = step.literal;
            break;
        case CMathOp::Variable:
            *end++ = *step.variable;
            break;
        case CMathOp::VariableAddress:
            *end++ = AsDouble(step.variable);
            break;

        case CMathOp::Add:
            end--;
            end[-1] += end[0];
            break;
        case CMathOp::Subtract:
        case CMathOp::Greater:
            end--;
            end[-1] -= end[0];
            break;
        case CMathOp::Multiply:
            end--;
            end[-1] *= end[0];
            break;
        case CMathOp::Divide:
            end--;
            if (end[0] != 0.0)
                end[-1] /= end[0];
            break;
        case CMathOp::Negate:
            end[-1] = -end[-1];
            break;
        case CMathOp::Modulo:
            end--;
            if (end[0] != 0.0)
                end[-1] -= OQTruncateToInt32(end[-1] / end[0]) * end[0];
            break;
        case CMathOp::Power:
        case CMathOp::Pow:
            end--;
            end[-1] = maths::Pow(end[-1], end[0]);
            break;
        case CMathOp::Less:
            end--;
            end[-1] = end[0] - end[-1];
            break;
        case CMathOp::Smaller:
            end--;
            if (std::fabs(end[-1]) > std::fabs(end[0]))
                end[-1] = end[0];
            break;
        case CMathOp::Larger:
            end--;
            if (std::fabs(end[0]) > std::fabs(end[-1]))
                end[-1] = end[0];
            break;
        case CMathOp::Plus:
            break;

        case CMathOp::Sin:
            end[-1] = maths::Sin(end[-1]);
            break;
        case CMathOp::Cos:
            end[-1] = maths::Cos(end[-1]);
            break;
        case CMathOp::Tan:
            end[-1] = maths::Tan(end[-1]);
            break;
        case CMathOp::Abs:
            end[-1] = std::fabs(end[-1]);
            break;
        case CMathOp::Atan:
            end[-1] = maths::Atan(end[-1]);
            break;
        case CMathOp::Log:
            end[-1] = maths::Log(end[-1]);
            break;
        case CMathOp::Log10:
            end[-1] = maths::Log(end[-1]) / kLogOf10;
            break;
        case CMathOp::AbsSin:
            end[-1] = std::fabs(maths::Sin(end[-1]));
            break;
        case CMathOp::AbsCos:
            end[-1] = std::fabs(maths::Cos(end[-1]));
            break;
        case CMathOp::Rand:
            end[-1] = Rand(end[-1]);
            break;
        case CMathOp::RandN:
            end[-1] = RandN(end[-1]);
            break;
        case CMathOp::If:
            end -= 2;
            end[-1] = end[-1] > 0.0 ? end[0] : end[1];
            break;
        case CMathOp::Sign:
            end[-1] = end[-1] < 0.0 ? -1.0 : 1.0;
            break;
        case CMathOp::Min:
            end--;
            if (end[-1] > end[0])
                end[-1] = end[0];
            break;
        case CMathOp::Max:
            end--;
            if (end[0] > end[-1])
                end[-1] = end[0];
            break;
        case CMathOp::Equal:
            end--;
            end[-1] = std::fabs(end[-1] - end[0]) < 0.0001 ? 1.0 : 0.0;
            break;
        case CMathOp::Below:
            end--;
            end[-1] = end[0] > end[-1] ? 1.0 : 0.0;
            break;
        case CMathOp::Above:
            end--;
            end[-1] = end[-1] > end[0] ? 1.0 : 0.0;
            break;
        case CMathOp::Int:
            end[-1] = OQTruncateToInt32(end[-1]);
            break;
        case CMathOp::Frac:
            end[-1] -= OQTruncateToInt32(end[-1]);
            break;
        case CMathOp::Round:
            end[-1] = OQTruncateToInt32(end[-1] > 0.0 ? end[-1] + 0.5 : end[-1] - 0.5);
            break;
        case CMathOp::Trunc:
            end--;
            end[-1] = Trunc(end[-1], end[0]);
            break;

        case CMathOp::EndAssignment:
            end--;
            *AsAddress(end[-1]) = end[0];
            break;
        case CMathOp::EndStatement:
            end = m_stack;
            break;

        case CMathOp::And:
            end--;
            end[-1] = end[-1] != 0.0 && end[0] != 0.0 ? 1.0 : 0.0;
            break;
        case CMathOp::Or:
            end--;
            end[-1] = end[-1] != 0.0 || end[0] != 0.0 ? 1.0 : 0.0;
            break;
        case CMathOp::Not:
            end[-1] = end[-1] != 0.0 ? 0.0 : 1.0;
            break;
        }
    }
    return m_hasResult ? m_stack[0] : 0.0;
}
