// Our functions beside the C library's: ns for one value, in blocks as the equations use them.

#include "kernels/Maths.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <random>

using namespace pxvis;
using Unary = double (*)(double);

static void Run(benchmark::State& state, Unary function, double low, double high)
{
    std::mt19937_64 generator(1);
    std::uniform_real_distribution<double> distribution(low, high);
    std::array<double, 256> arguments;
    std::array<double, 256> results;
    for (double& argument : arguments)
        argument = distribution(generator);
    for ([[maybe_unused]] auto step : state) {
        for (size_t i = 0; i < arguments.size(); i++)
            results[i] = function(arguments[i]);
        benchmark::DoNotOptimize(results.data());
        benchmark::ClobberMemory();
    }
    const double values = static_cast<double>(state.iterations()) * arguments.size();
    state.counters["per_value"]
        = benchmark::Counter(values, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

#define COMPARE(ours, theirs, low, high)                                                           \
    BENCHMARK_CAPTURE(Run, ours, maths::ours, low, high);                                          \
    BENCHMARK_CAPTURE(                                                                             \
        Run, ours##_libm, [](double x) { return std::theirs; }, low, high)

COMPARE(Sin, sin(x), -100.0, 100.0);
COMPARE(Cos, cos(x), -100.0, 100.0);
COMPARE(Tan, tan(x), -100.0, 100.0);
COMPARE(Atan, atan(x), -10.0, 10.0);
COMPARE(Acos, acos(x), -1.0, 1.0);
COMPARE(Log, log(x), 0.0, 1000.0);
COMPARE(Exp, exp(x), -20.0, 20.0);

static double OurPower(double x)
{
    return maths::Pow(x, 1.7);
}

static double TheirPower(double x)
{
    return std::pow(x, 1.7);
}

BENCHMARK_CAPTURE(Run, Pow, OurPower, 0.0, 10.0);
BENCHMARK_CAPTURE(Run, Pow_libm, TheirPower, 0.0, 10.0);
// Every argument beyond the quick reduction.
BENCHMARK_CAPTURE(Run, Sin_huge, maths::Sin, 1e15, 2e15);
