#include "expression/CMathEvaluator.h"

#include "expression/CMathCompiler.h"
#include "foundation/OQFloatingPointScope.h"

namespace {

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
    // Here numbers are read and what they alone determine is worked out, often while a script
    // loads.
    const OQFloatingPointScope floatingPoint;
    OQArray<CMathEvaluatorOpCode> opcodes;
    CMathCompiler compiler(*m_table, opcodes, error);
    m_compiled = compiler.Compile(text);
    m_hasResult = compiler.HasResult();
    if (!m_compiled)
        return;
    for (const CMathEvaluatorOpCode& step : opcodes)
        m_work += WorkOf(step.opcode);
    m_program.Build(opcodes, m_hasResult);
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
    m_program.Clear();
    m_compiled = false;
    m_hasResult = false;
    m_work = 0;
}

double CMathEvaluator::Evaluate()
{
    return m_compiled ? m_program.Run() : 0.0;
}
