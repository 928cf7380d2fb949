#include "apps/pxvis/bench/PlainInterpreter.h"

#include "expression/CMathCompiler.h"
#include "expression/MathRandom.h"
#include "foundation/OQTruncate.h"
#include "kernels/Maths.h"

#include <bit>
#include <cmath>

namespace pxvis::bench {

PlainInterpreter::PlainInterpreter(const OQString& equation)
{
    CMathCompiler(m_variables, m_opcodes, nullptr).Compile(equation);
}

double& PlainInterpreter::Variable(const OQChar* name)
{
    return m_variables.Variable(m_variables.GetVariable(name, true));
}

// Of the operations those that the measured equations have.
void PlainInterpreter::Run()
{
    double* end = m_stack;
    for (const CMathEvaluatorOpCode& step : m_opcodes) {
        switch (step.opcode) {
        case CMathOp::Number:
            *end++ = step.literal;
            break;
        case CMathOp::Variable:
            *end++ = *step.variable;
            break;
        case CMathOp::VariableAddress:
            *end++ = std::bit_cast<double>(reinterpret_cast<uintptr_t>(step.variable));
            break;
        case CMathOp::Add:
            end--;
            end[-1] += end[0];
            break;
        case CMathOp::Subtract:
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
        case CMathOp::Modulo:
            end--;
            if (end[0] != 0.0)
                end[-1] -= OQTruncateToInt32(end[-1] / end[0]) * end[0];
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
        case CMathOp::Rand:
            end[-1] = MathRandom::Rand(end[-1]);
            break;
        case CMathOp::EndAssignment:
            end--;
            *std::bit_cast<double*>(end[-1]) = end[0];
            break;
        case CMathOp::EndStatement:
            end = m_stack;
            break;
        default:
            break;
        }
    }
}

}
