#pragma once

#include "expression/CMathEvaluator.h"
#include "kernels/ColumnOperations.h"

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <vector>

// Runs a compiled equation for many points, a block of them at a time: each step works on columns,
// a value of every point, so that the cost of a step's dispatch is shared and vectors can be used.
// The results are those of Evaluate for one point after the other, bit for bit, random numbers
// included. A program that carries a value from one point to the next, as a counter does, or draws
// random numbers below a limit that isn't fixed, runs point by point all the same.
//
// The equation outlives it and isn't compiled anew meanwhile. Used by one thread at a time.
//
// It keeps next to nothing: the columns are shared by all of a thread.
class CMathColumns
{
public:
    static constexpr int32_t kLanes = 256; // points of a block

    // `inputs` are the variables that the caller gives for each point, `outputs` further ones that
    // are read for each.
    CMathColumns(CMathEvaluator& equation, std::initializer_list<double*> inputs,
        std::initializer_list<double*> outputs = {});

    // kLanes values of an input, to be filled before Run, or of an output. The columns are the
    // thread's: they hold until another object's are asked for on it.
    double* Column(const double* variable);

    // Runs the program for `count` points, at most kLanes. Afterwards the columns of inputs and
    // outputs hold what each point came to, and each variable has the value of the last one.
    void Run(int32_t count);

    // Whether the program runs in columns; else Run does the same point by point.
    bool RunsInColumns() const { return m_plan->runsInColumns; }

    // A copy for another thread, whose runs leave the variables as they are; it runs as long as the
    // equation isn't compiled anew. None if a point's results depend on more than its inputs, or if
    // it doesn't run in columns now.
    std::optional<CMathColumns> Detached() const;

private:
    struct alignas(64) Block
    {
        double lanes[kLanes];
    };

    // A variable of the program or the caller, with what is done about it round a run.
    struct Variable
    {
        double* variable;
        bool given; // by the caller, for each point
        bool written; // by the program
    };

    struct Step
    {
        pxvis::kernels::ColumnOperation operation;
        int32_t draw = -1; // of the draws: draws random numbers instead
        uint16_t result = 0; // columns
        uint16_t a = 0;
        uint16_t b = 0;
        uint16_t c = 0;
    };

    // A rand or randn of the program.
    struct Draw
    {
        int32_t steps; // see MathRandom::StepsOf
        bool isSymmetric; // randn
        double limit;
    };

    struct Number
    {
        uint16_t column;
        double value;
    };

    // What never changes; copies share it.
    struct Plan
    {
        uint64_t number = 0; // no other plan's
        bool runsInColumns = false;
        std::vector<Variable> variables; // in the first columns
        std::vector<const double*> values; // what each column stands for
        std::vector<Number> numbers;
        std::vector<Step> steps;
        std::vector<Draw> draws;
    };

    class Compiler;
    struct Scratch;

    static Scratch& ThreadScratch();
    Block* Blocks() const;
    void RunNothing(int32_t count);
    void RunPoints(int32_t count);
    void RunColumns(int32_t count, const pxvis::kernels::ColumnFunction* functions);
    void RunDraw(const Step& step, uint32_t state, uint32_t stepsOfPoint, int32_t count);

    CMathEvaluator* m_equation;
    std::shared_ptr<const Plan> m_plan;
    const pxvis::kernels::ColumnFunction* m_functions = nullptr; // of a detached copy
};
