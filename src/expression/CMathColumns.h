#pragma once

#include "expression/CMathEvaluator.h"
#include "kernels/ColumnOperations.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <vector>

// Runs a compiled equation for many points, a block of them at a time: each step works on columns,
// a value of every point, so that the cost of a step's dispatch is shared and vectors can be used.
// The results are those of Evaluate for one point after the other, bit for bit, random numbers
// included. A program that carries a value from one point to the next, as a counter does, or draws
// random numbers below a limit that isn't fixed, runs point by point all the same.
//
// The equation outlives it and isn't compiled anew meanwhile. Used by one thread at a time.
class CMathColumns
{
public:
    static constexpr int32_t kLanes = 256; // points of a block

    // `inputs` are the variables that the caller gives for each point, `outputs` further ones that
    // are read for each.
    CMathColumns(CMathEvaluator& equation, std::initializer_list<double*> inputs,
        std::initializer_list<double*> outputs = {});

    // kLanes values of an input or output: filled before Run with what each point has, and holding
    // afterwards what it came to. All other inputs' columns have to be filled, too.
    double* Column(const double* variable)
    {
        return m_columns[static_cast<size_t>(Find(variable))].lanes;
    }

    // Runs the program for `count` points, at most kLanes. Afterwards each variable has the value
    // of the last one.
    void Run(int32_t count);

    // Whether the program runs in columns; else Run does the same point by point.
    bool RunsInColumns() const { return m_runsInColumns; }

    // Whether it runs in columns now and a point's results depend on nothing but its inputs: then
    // the points of a picture may be shared out among threads, each with a detached copy.
    bool IsPure() const;

    // A copy whose runs leave the variables as they are. Only of what IsPure.
    CMathColumns Detached() const;

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
        int32_t draw = -1; // of m_draws: draws random numbers instead
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

    static constexpr size_t kMostColumns
        = 192; // all columns of a program fit into the second cache

    void AddVariable(double* variable, bool given);
    bool Compile(const CMathProgram& program);
    std::array<int32_t, 4> ColumnsOf(const CMathStep& step);
    bool AddStep(
        const CMathStep& step, const std::array<int32_t, 4>& columns, const CMathProgram& program);
    int32_t Find(const double* value) const;
    void RunNothing(int32_t count);
    void RunPoints(int32_t count);
    void RunColumns(int32_t count, const pxvis::kernels::ColumnFunction* functions);
    void RunDraw(const Step& step, uint32_t state, uint32_t stepsOfPoint, int32_t count);

    CMathEvaluator* m_equation;
    bool m_runsInColumns = false;
    const pxvis::kernels::ColumnFunction* m_functions = nullptr; // of a detached copy
    std::vector<Variable> m_variables; // in the first columns
    std::vector<const double*> m_values; // what each column stands for
    std::vector<Block> m_columns;
    std::vector<Step> m_steps;
    std::vector<Draw> m_draws;
};
