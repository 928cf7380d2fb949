#include "expression/CMathColumns.h"

#include "expression/MathRandom.h"
#include "foundation/OQEngineContext.h"

#include <algorithm>

using pxvis::kernels::ColumnFunction;
using pxvis::kernels::ColumnOperation;
using pxvis::kernels::LinearGenerator;
using pxvis::kernels::randomGenerator;

namespace {

constexpr uint32_t stepsOfDraw = 2; // of the generator, for one random number

// The result first.
std::array<const double*, 4> ValuesOf(const CMathStep& step)
{
    return { step.result, step.a, step.b, step.c };
}

ColumnOperation OperationOf(CMathOp operation)
{
    switch (operation) {
    case CMathOp::Add:
        return ColumnOperation::Add;
    case CMathOp::Subtract:
    case CMathOp::Greater:
        return ColumnOperation::Subtract;
    case CMathOp::Multiply:
        return ColumnOperation::Multiply;
    case CMathOp::Divide:
        return ColumnOperation::Divide;
    case CMathOp::Negate:
        return ColumnOperation::Negate;
    case CMathOp::Modulo:
        return ColumnOperation::Modulo;
    case CMathOp::Power:
    case CMathOp::Pow:
        return ColumnOperation::Power;
    case CMathOp::Less:
        return ColumnOperation::Less;
    case CMathOp::Smaller:
        return ColumnOperation::Smaller;
    case CMathOp::Larger:
        return ColumnOperation::Larger;
    case CMathOp::Sin:
        return ColumnOperation::Sin;
    case CMathOp::Cos:
        return ColumnOperation::Cos;
    case CMathOp::Tan:
        return ColumnOperation::Tan;
    case CMathOp::Abs:
        return ColumnOperation::Abs;
    case CMathOp::Atan:
        return ColumnOperation::Atan;
    case CMathOp::Log:
        return ColumnOperation::Log;
    case CMathOp::Log10:
        return ColumnOperation::Log10;
    case CMathOp::AbsSin:
        return ColumnOperation::AbsSin;
    case CMathOp::AbsCos:
        return ColumnOperation::AbsCos;
    case CMathOp::If:
        return ColumnOperation::If;
    case CMathOp::Sign:
        return ColumnOperation::Sign;
    case CMathOp::Min:
        return ColumnOperation::Min;
    case CMathOp::Max:
        return ColumnOperation::Max;
    case CMathOp::Equal:
        return ColumnOperation::Equal;
    case CMathOp::Below:
        return ColumnOperation::Below;
    case CMathOp::Above:
        return ColumnOperation::Above;
    case CMathOp::Int:
        return ColumnOperation::Int;
    case CMathOp::Frac:
        return ColumnOperation::Frac;
    case CMathOp::Round:
        return ColumnOperation::Round;
    case CMathOp::Trunc:
        return ColumnOperation::Trunc;
    case CMathOp::And:
        return ColumnOperation::And;
    case CMathOp::Or:
        return ColumnOperation::Or;
    case CMathOp::Not:
        return ColumnOperation::Not;
    default:
        return ColumnOperation::Copy;
    }
}

}

CMathColumns::CMathColumns(CMathEvaluator& equation, std::initializer_list<double*> inputs,
    std::initializer_list<double*> outputs)
    : m_equation(&equation)
{
    for (double* variable : inputs)
        AddVariable(variable, true);
    for (double* variable : outputs)
        AddVariable(variable, false);
    const size_t ofCaller = m_values.size();
    m_runsInColumns = Compile(equation.GetProgram());
    if (!m_runsInColumns) {
        m_variables.resize(ofCaller);
        m_values.resize(ofCaller);
        m_steps.clear();
        m_draws.clear();
    }
    m_columns.resize(m_values.size());
    for (size_t i = 0; i < m_values.size(); ++i) {
        if (equation.GetProgram().IsNumber(m_values[i]))
            std::fill_n(m_columns[i].lanes, kLanes, *m_values[i]);
    }
}

void CMathColumns::AddVariable(double* variable, bool given)
{
    m_variables.push_back({ variable, given, false });
    m_values.push_back(variable);
}

bool CMathColumns::Compile(const CMathProgram& program)
{
    // The program's further variables come behind the caller's, so that all are the first columns.
    for (const CMathStep& step : program.Steps()) {
        for (const double* value : ValuesOf(step)) {
            if (!value || program.IsNumber(value) || program.IsTemporary(value))
                continue;
            const int32_t known = Find(value);
            if (known < 0 && m_values.size() == kMostColumns)
                return false;
            if (known < 0)
                AddVariable(const_cast<double*>(value), false);
            if (value == step.result)
                m_variables[static_cast<size_t>(Find(value))].written = true;
        }
    }

    std::vector<bool> known(m_variables.size());
    for (size_t i = 0; i < m_variables.size(); ++i)
        known[i] = m_variables[i].given || !m_variables[i].written;
    for (const CMathStep& step : program.Steps()) {
        const std::array<int32_t, 4> columns = ColumnsOf(step);
        for (const int32_t column : columns) {
            if (column < 0)
                return false;
        }
        const auto carried = [&](int32_t column) {
            return static_cast<size_t>(column) < known.size()
                && !known[static_cast<size_t>(column)];
        };
        if (carried(columns[1]) || carried(columns[2]) || carried(columns[3]))
            return false;
        if (static_cast<size_t>(columns[0]) < known.size())
            known[static_cast<size_t>(columns[0])] = true;
        if (!AddStep(step, columns, program))
            return false;
    }
    return true;
}

// Adds those of numbers and temporaries. -1 for one too many; operands that aren't there count as
// the first one.
std::array<int32_t, 4> CMathColumns::ColumnsOf(const CMathStep& step)
{
    std::array<int32_t, 4> columns {};
    for (size_t i = 0; const double* value : ValuesOf(step)) {
        columns[i] = value ? Find(value) : columns[1];
        if (columns[i] < 0 && m_values.size() < kMostColumns) {
            columns[i] = static_cast<int32_t>(m_values.size());
            m_values.push_back(value);
        }
        ++i;
    }
    return columns;
}

bool CMathColumns::AddStep(
    const CMathStep& step, const std::array<int32_t, 4>& columns, const CMathProgram& program)
{
    Step added { .operation = OperationOf(step.operation),
        .result = static_cast<uint16_t>(columns[0]),
        .a = static_cast<uint16_t>(columns[1]),
        .b = static_cast<uint16_t>(columns[2]),
        .c = static_cast<uint16_t>(columns[3]) };
    if (step.operation == CMathOp::Rand || step.operation == CMathOp::RandN) {
        // Of a number it draws, or it would have been worked out; of anything else it may or not.
        if (!program.IsNumber(step.a))
            return false;
        added.draw = static_cast<int32_t>(m_draws.size());
        m_draws.push_back({ MathRandom::StepsOf(step.operation, *step.a),
            step.operation == CMathOp::RandN, *step.a });
    }
    m_steps.push_back(added);
    return true;
}

int32_t CMathColumns::Find(const double* value) const
{
    const auto found = std::find(m_values.begin(), m_values.end(), value);
    return found == m_values.end() ? -1 : static_cast<int32_t>(found - m_values.begin());
}

bool CMathColumns::IsPure() const
{
    return m_runsInColumns && m_draws.empty() && pxvis::kernels::ColumnFunctions();
}

CMathColumns CMathColumns::Detached() const
{
    CMathColumns copy = *this;
    copy.m_functions = pxvis::kernels::ColumnFunctions();
    return copy;
}

void CMathColumns::Run(int32_t count)
{
    const ColumnFunction* functions = m_functions;
    if (!functions && m_runsInColumns)
        functions = pxvis::kernels::ColumnFunctions();
    if (count <= 0 || !m_equation->IsCompiled())
        RunNothing(count);
    else if (functions)
        RunColumns(count, functions);
    else
        RunPoints(count);
}

// An equation that isn't compiled changes nothing.
void CMathColumns::RunNothing(int32_t count)
{
    for (size_t i = 0; i < m_variables.size() && count > 0; ++i) {
        if (m_variables[i].given)
            *m_variables[i].variable = m_columns[i].lanes[count - 1];
        else
            std::fill_n(m_columns[i].lanes, count, *m_variables[i].variable);
    }
}

void CMathColumns::RunPoints(int32_t count)
{
    for (int32_t lane = 0; lane < count; ++lane) {
        for (size_t i = 0; i < m_variables.size(); ++i) {
            if (m_variables[i].given)
                *m_variables[i].variable = m_columns[i].lanes[lane];
        }
        m_equation->Evaluate();
        for (size_t i = 0; i < m_variables.size(); ++i)
            m_columns[i].lanes[lane] = *m_variables[i].variable;
    }
}

void CMathColumns::RunColumns(int32_t count, const ColumnFunction* functions)
{
    for (size_t i = 0; i < m_variables.size(); ++i) {
        if (!m_variables[i].given && !m_variables[i].written)
            std::fill_n(m_columns[i].lanes, kLanes, *m_variables[i].variable);
    }

    uint32_t state = 0;
    const uint32_t stepsOfPoint = stepsOfDraw * static_cast<uint32_t>(m_draws.size());
    if (stepsOfPoint > 0) {
        OQSeedRandForEquations();
        uint32_t& generator = OQCurrentEngineContext().randomState;
        state = generator;
        generator
            = randomGenerator.Steps(stepsOfPoint * static_cast<uint32_t>(count)).Next(generator);
    }
    const auto lanes = [this](uint16_t column) { return m_columns[column].lanes; };
    for (const Step& step : m_steps) {
        if (step.draw >= 0) {
            RunDraw(step, state, stepsOfPoint, count);
            state = randomGenerator.Steps(stepsOfDraw).Next(state);
        } else
            functions[static_cast<size_t>(step.operation)](
                lanes(step.result), lanes(step.a), lanes(step.b), lanes(step.c), count);
    }

    for (size_t i = 0; i < m_variables.size() && !m_functions; ++i) {
        if (m_variables[i].given || m_variables[i].written)
            *m_variables[i].variable = m_columns[i].lanes[count - 1];
    }
}

// `state` is the generator's before the first point's number.
void CMathColumns::RunDraw(const Step& step, uint32_t state, uint32_t stepsOfPoint, int32_t count)
{
    const Draw& draw = m_draws[static_cast<size_t>(step.draw)];
    double* result = m_columns[step.result].lanes;
    pxvis::kernels::RandomColumn(
        result, state, randomGenerator.Steps(stepsOfPoint), draw.steps, count);
    if (draw.isSymmetric) {
        for (int32_t i = 0; i < count; ++i)
            result[i] -= draw.limit;
    }
}
