#include "expression/CMathColumns.h"

#include "expression/MathRandom.h"
#include "foundation/OQEngineContext.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>

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

// Turns a program into a plan. kMostColumns of 2 KiB are what fits into a second-level cache; a
// program of more values, or of more steps than anybody would write, runs point by point.
class CMathColumns::Compiler
{
public:
    static constexpr size_t kMostColumns = 192;
    static constexpr size_t kMostSteps = 16384;

    Compiler(Plan& plan, const CMathProgram& program)
        : m_plan(plan)
        , m_program(program)
    {
    }

    void AddVariable(double* variable, bool given)
    {
        m_plan.variables.push_back({ variable, given, false });
        m_plan.values.push_back(variable);
    }

    bool Compile()
    {
        if (m_program.Steps().size() > kMostSteps || !AddVariables())
            return false;
        m_known.resize(m_plan.variables.size());
        for (size_t i = 0; i < m_known.size(); ++i)
            m_known[i] = m_plan.variables[i].given || !m_plan.variables[i].written;
        return std::all_of(m_program.Steps().begin(), m_program.Steps().end(),
            [this](const CMathStep& step) { return AddStep(step); });
    }

private:
    // The program's further variables come behind the caller's, so that all are the first columns.
    bool AddVariables()
    {
        for (const CMathStep& step : m_program.Steps()) {
            for (const double* value : ValuesOf(step)) {
                if (!value || m_program.IsNumber(value) || m_program.IsTemporary(value))
                    continue;
                int32_t column = Find(value);
                if (column < 0) {
                    if (m_plan.values.size() == kMostColumns)
                        return false;
                    column = static_cast<int32_t>(m_plan.values.size());
                    AddVariable(const_cast<double*>(value), false);
                }
                if (value == step.result)
                    m_plan.variables[static_cast<size_t>(column)].written = true;
            }
        }
        return true;
    }

    bool AddStep(const CMathStep& step)
    {
        int32_t columns[4] {};
        for (size_t i = 0; const double* value : ValuesOf(step)) {
            // An operand that isn't there counts as the first one.
            columns[i] = value ? ColumnOf(value) : columns[1];
            if (columns[i] < 0 || (i > 0 && IsCarried(columns[i])))
                return false;
            ++i;
        }
        if (static_cast<size_t>(columns[0]) < m_known.size())
            m_known[static_cast<size_t>(columns[0])] = true;
        Step added { .operation = OperationOf(step.operation),
            .result = static_cast<uint16_t>(columns[0]),
            .a = static_cast<uint16_t>(columns[1]),
            .b = static_cast<uint16_t>(columns[2]),
            .c = static_cast<uint16_t>(columns[3]) };
        if (step.operation == CMathOp::Rand || step.operation == CMathOp::RandN) {
            // Of a number it draws, or it would have been worked out; of anything else it may or
            // not.
            if (!m_program.IsNumber(step.a))
                return false;
            added.draw = static_cast<int32_t>(m_plan.draws.size());
            m_plan.draws.push_back({ MathRandom::StepsOf(step.operation, *step.a),
                step.operation == CMathOp::RandN, *step.a });
        }
        m_plan.steps.push_back(added);
        return true;
    }

    // -1 for one too many.
    int32_t ColumnOf(const double* value)
    {
        const int32_t known = m_program.IsNumber(value) ? FindNumber(*value) : Find(value);
        if (known >= 0 || m_plan.values.size() == kMostColumns)
            return known;
        const auto column = static_cast<uint16_t>(m_plan.values.size());
        m_plan.values.push_back(value);
        if (m_program.IsNumber(value))
            m_plan.numbers.push_back({ column, *value });
        return column;
    }

    int32_t Find(const double* value) const
    {
        const auto found = std::find(m_plan.values.begin(), m_plan.values.end(), value);
        return found == m_plan.values.end() ? -1
                                            : static_cast<int32_t>(found - m_plan.values.begin());
    }

    int32_t FindNumber(double value) const
    {
        for (const Number& number : m_plan.numbers) {
            if (std::bit_cast<uint64_t>(number.value) == std::bit_cast<uint64_t>(value))
                return number.column;
        }
        return -1;
    }

    // A variable that is read before it is written holds what the point before left in it.
    bool IsCarried(int32_t column) const
    {
        return static_cast<size_t>(column) < m_known.size()
            && !m_known[static_cast<size_t>(column)];
    }

    Plan& m_plan;
    const CMathProgram& m_program;
    std::vector<bool> m_known; // of the variables, where the program stands
};

// A thread's columns, with the numbers of the plan that had them last.
struct CMathColumns::Scratch
{
    std::vector<Block> blocks;
    uint64_t plan = 0;
};

CMathColumns::CMathColumns(CMathEvaluator& equation, std::initializer_list<double*> inputs,
    std::initializer_list<double*> outputs)
    : m_equation(&equation)
{
    static std::atomic<uint64_t> plans { 0 };
    const auto plan = std::make_shared<Plan>();
    plan->number = ++plans;
    Compiler compiler(*plan, equation.GetProgram());
    for (double* variable : inputs)
        compiler.AddVariable(variable, true);
    for (double* variable : outputs)
        compiler.AddVariable(variable, false);
    const size_t ofCaller = plan->values.size();
    plan->runsInColumns = compiler.Compile();
    if (!plan->runsInColumns) {
        plan->variables.resize(ofCaller);
        plan->values.resize(ofCaller);
        plan->numbers = {};
        plan->steps = {};
        plan->draws = {};
    }
    m_plan = plan;
}

CMathColumns::Scratch& CMathColumns::ThreadScratch()
{
    static thread_local Scratch scratch;
    return scratch;
}

// Those of the thread, with this plan's numbers in them.
CMathColumns::Block* CMathColumns::Blocks() const
{
    Scratch& scratch = ThreadScratch();
    if (scratch.plan != m_plan->number) {
        if (scratch.blocks.size() < m_plan->values.size())
            scratch.blocks.resize(m_plan->values.size());
        for (const Number& number : m_plan->numbers)
            std::fill_n(scratch.blocks[number.column].lanes, kLanes, number.value);
        scratch.plan = m_plan->number;
    }
    return scratch.blocks.data();
}

double* CMathColumns::Column(const double* variable)
{
    const auto& values = m_plan->values;
    return Blocks()[std::find(values.begin(), values.end(), variable) - values.begin()].lanes;
}

std::optional<CMathColumns> CMathColumns::Detached() const
{
    const ColumnFunction* functions = pxvis::kernels::ColumnFunctions();
    if (!m_plan->runsInColumns || !m_plan->draws.empty() || !functions)
        return std::nullopt;
    CMathColumns copy = *this;
    copy.m_functions = functions;
    return copy;
}

void CMathColumns::Run(int32_t count)
{
    const ColumnFunction* functions = m_functions;
    if (!functions && m_plan->runsInColumns)
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
    Block* columns = Blocks();
    for (size_t i = 0; i < m_plan->variables.size() && count > 0; ++i) {
        const Variable& variable = m_plan->variables[i];
        if (!variable.given)
            std::fill_n(columns[i].lanes, count, *variable.variable);
        else if (!m_functions)
            *variable.variable = columns[i].lanes[count - 1];
    }
}

void CMathColumns::RunPoints(int32_t count)
{
    Block* columns = Blocks();
    const std::vector<Variable>& variables = m_plan->variables;
    for (int32_t lane = 0; lane < count; ++lane) {
        for (size_t i = 0; i < variables.size(); ++i) {
            if (variables[i].given)
                *variables[i].variable = columns[i].lanes[lane];
        }
        m_equation->Evaluate();
        for (size_t i = 0; i < variables.size(); ++i)
            columns[i].lanes[lane] = *variables[i].variable;
    }
}

void CMathColumns::RunColumns(int32_t count, const ColumnFunction* functions)
{
    constexpr int32_t padding = pxvis::kernels::columnPadding;
    Block* columns = Blocks();
    const std::vector<Variable>& variables = m_plan->variables;
    for (size_t i = 0; i < variables.size(); ++i) {
        if (!variables[i].given && !variables[i].written)
            std::fill_n(columns[i].lanes, (count + padding - 1) / padding * padding,
                *variables[i].variable);
    }

    uint32_t state = 0;
    const uint32_t stepsOfPoint = stepsOfDraw * static_cast<uint32_t>(m_plan->draws.size());
    if (stepsOfPoint > 0) {
        OQSeedRandForEquations();
        uint32_t& generator = OQCurrentEngineContext().randomState;
        state = generator;
        generator
            = randomGenerator.Steps(stepsOfPoint * static_cast<uint32_t>(count)).Next(generator);
    }
    for (const Step& step : m_plan->steps) {
        if (step.draw >= 0) {
            RunDraw(step, state, stepsOfPoint, count);
            state = randomGenerator.Steps(stepsOfDraw).Next(state);
        } else
            functions[static_cast<size_t>(step.operation)](columns[step.result].lanes,
                columns[step.a].lanes, columns[step.b].lanes, columns[step.c].lanes, count);
    }

    for (size_t i = 0; i < variables.size() && !m_functions; ++i) {
        if (variables[i].given || variables[i].written)
            *variables[i].variable = columns[i].lanes[count - 1];
    }
}

// `state` is the generator's before the first point's number.
void CMathColumns::RunDraw(const Step& step, uint32_t state, uint32_t stepsOfPoint, int32_t count)
{
    const Draw& draw = m_plan->draws[static_cast<size_t>(step.draw)];
    double* result = Blocks()[step.result].lanes;
    pxvis::kernels::RandomColumn(
        result, state, randomGenerator.Steps(stepsOfPoint), draw.steps, count);
    if (draw.isSymmetric) {
        for (int32_t i = 0; i < count; ++i)
            result[i] -= draw.limit;
    }
}
