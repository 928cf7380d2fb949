#include "apps/pxvis/bench/BenchAreas.h"
#include "apps/pxvis/bench/PlainInterpreter.h"
#include "expression/CMathColumns.h"
#include "foundation/OQEngineContext.h"
#include "kernels/Maths.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace pxvis::bench {

namespace {

constexpr int32_t points = 32768;

struct EquationCase
{
    const char* name;
    const OQChar* text;
    void (*native)(double& d, double& r); // by the C library
};

const EquationCase equationCases[] = {
    { "product", u"d=d*0.95", [](double& d, double&) { d = d * 0.95; } },
    { "sine", u"d=d*(1-abs((sin(r*100)/10)))",
        [](double& d, double& r) { d = d * (1 - std::fabs(std::sin(r * 100) / 10)); } },
    { "sine-cosine", u"d=d*(0.98+sin(r*20)*0.02);r=r+cos(d*40)*0.01",
        [](double& d, double& r) {
            d = d * (0.98 + std::sin(r * 20) * 0.02);
            r = r + std::cos(d * 40) * 0.01;
        } },
    { "tangent", u"d=d*0.99+tan(r*6)*0.001",
        [](double& d, double& r) { d = d * 0.99 + std::tan(r * 6) * 0.001; } },
    { "random", u"d=d+rand(0.1)",
        [](double& d, double&) {
            const int32_t high = OQRand();
            const int32_t random = (high << 15) | OQRand();
            d = d + (random % 819) * (1.0 / 8192.0);
        } },
};

struct PointColumns
{
    std::vector<double> d = std::vector<double>(points);
    std::vector<double> r = std::vector<double>(points);
    std::vector<double> newD = d;
    std::vector<double> newR = r;
};

void RunColumns(CMathColumns& columns, const double* d, const double* r, PointColumns& values)
{
    double* dColumn = columns.Column(d);
    double* rColumn = columns.Column(r);
    for (int32_t i = 0; i < points; i += CMathColumns::kLanes) {
        std::copy_n(values.d.data() + i, CMathColumns::kLanes, dColumn);
        std::copy_n(values.r.data() + i, CMathColumns::kLanes, rColumn);
        columns.Run(CMathColumns::kLanes);
        std::copy_n(dColumn, CMathColumns::kLanes, values.newD.data() + i);
        std::copy_n(rColumn, CMathColumns::kLanes, values.newR.data() + i);
    }
}

// Runs for each point with d and r as given, and keeps what they become.
template <typename Run>
void ForPoints(PointColumns& values, double& d, double& r, const Run& run)
{
    for (size_t i = 0; i < points; ++i) {
        d = values.d[i];
        r = values.r[i];
        run();
        values.newD[i] = d;
        values.newR[i] = r;
    }
}

std::string NameOf(const char* area, const EquationCase& item)
{
    return std::string(area) + "/" + item.name + "/" + std::to_string(points);
}

void BenchEquation(BenchTable& table, const EquationCase& item)
{
    PointColumns values;
    for (size_t i = 0; i < points; ++i) {
        values.d[i] = static_cast<double>(i) / points;
        values.r[i] = static_cast<double>(i * 7919 % points) / points;
    }
    CMathEvaluator equation;
    double& d = equation.Variable(equation.GetVariable(u"d", true));
    double& r = equation.Variable(equation.GetVariable(u"r", true));
    equation.SetEquation(item.text);
    CMathColumns columns(equation, { &d, &r });
    PlainInterpreter interpreter(item.text);
    double& plainD = interpreter.Variable(u"d");
    double& plainR = interpreter.Variable(u"r");
    double nativeD = 0;
    double nativeR = 0;

    Timed inColumns { [&] { RunColumns(columns, &d, &r, values); }, points };
    Timed single { [&] { ForPoints(values, d, r, [&] { equation.Evaluate(); }); }, points };
    Timed plain { [&] { ForPoints(values, plainD, plainR, [&] { interpreter.Run(); }); }, points };
    Timed native { [&] {
                      for (size_t i = 0; i < points; ++i) {
                          nativeD = values.d[i];
                          nativeR = values.r[i];
                          item.native(nativeD, nativeR);
                          values.newD[i] = nativeD;
                          values.newR[i] = nativeR;
                      }
                  },
        points };
    TimeTogether({ &inColumns, &single, &plain, &native });
    if (table.Wants(NameOf("columns", item)))
        table.Add({ NameOf("columns", item), "eval", 1, inColumns.ns, plain.ns, native.ns });
    if (table.Wants(NameOf("evaluate", item)))
        table.Add({ NameOf("evaluate", item), "eval", 1, single.ns, plain.ns, native.ns });
}

struct FunctionCase
{
    const char* name;
    kernels::ColumnOperation operation;
    double (*ours)(double);
    double (*library)(double);
    double low;
    double high;
};

}

void BenchEquations(BenchTable& table)
{
    for (const EquationCase& item : equationCases) {
        if (table.Wants(NameOf("columns", item)) || table.Wants(NameOf("evaluate", item)))
            BenchEquation(table, item);
    }
}

void BenchMaths(BenchTable& table)
{
    using kernels::ColumnOperation;
    static constexpr int32_t count = CMathColumns::kLanes;
    const FunctionCase functions[] = {
        { "sin", ColumnOperation::Sin, maths::Sin, std::sin, -100, 100 },
        { "cos", ColumnOperation::Cos, maths::Cos, std::cos, -100, 100 },
        { "tan", ColumnOperation::Tan, maths::Tan, std::tan, -100, 100 },
        { "atan", ColumnOperation::Atan, maths::Atan, std::atan, -10, 10 },
        { "log", ColumnOperation::Log, maths::Log, std::log, 0, 1000 },
    };
    const kernels::ColumnFunction* inColumns = kernels::ColumnFunctions();
    for (const FunctionCase& function : functions) {
        const std::string name
            = std::string("maths/") + function.name + "/" + std::to_string(count);
        if (!table.Wants(name) || !inColumns)
            continue;
        std::vector<double> arguments(count);
        std::vector<double> results(count);
        for (int32_t i = 0; i < count; ++i)
            arguments[static_cast<size_t>(i)]
                = function.low + (function.high - function.low) * (i * 97 % count + 0.5) / count;
        constexpr int32_t turns = 64;
        const auto each = [&](double (*of)(double)) {
            for (int32_t turn = 0; turn < turns; ++turn)
                std::transform(arguments.begin(), arguments.end(), results.begin(), of);
        };
        Timed vectors { [&] {
                           for (int32_t turn = 0; turn < turns; ++turn)
                               inColumns[static_cast<size_t>(function.operation)](
                                   results.data(), arguments.data(), nullptr, nullptr, count);
                       },
            turns * count };
        Timed scalar { [&] { each(function.ours); }, turns * count };
        Timed library { [&] { each(function.library); }, turns * count };
        TimeTogether({ &vectors, &scalar, &library }, 0.2);
        table.Add({ name, "eval", 1, vectors.ns, scalar.ns, library.ns });
    }
}

}
