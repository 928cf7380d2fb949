#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <optional>
#include <string>

namespace pxvis::bench {

// A line of the benchmark: nanoseconds for one unit, the smallest of many runs.
struct Figure
{
    std::string name; // area/case/size
    const char* unit; // "pixel", "eval" or "frame"
    int32_t threads = 1;
    double ns = 0;
    std::optional<double> scalarNs; // of the plain form
    std::optional<double> floorNs; // of a loop that only moves the same bytes, or of native code
};

// Takes the figures that are wanted and prints each as soon as it is known.
class BenchTable
{
public:
    // `filter`: part of the names that are wanted.
    BenchTable(std::ostream& output, std::ostream& errors, const std::string& filter, bool json);

    bool Wants(const std::string& name) const;

    void Add(const Figure& figure);

    // For what could not be measured: a line about it, with its end, to the errors.
    void Fail(const std::string& reason);

    int32_t Count() const { return m_count; }

    bool HasFailed() const { return m_hasFailed; }

private:
    std::ostream& m_output;
    std::ostream& m_errors;
    std::string m_filter;
    bool m_json;
    int32_t m_count = 0;
    bool m_hasFailed = false;
};

// Work of which a run handles so many units; what one costs is found by TimeTogether.
struct Timed
{
    std::function<void()> run;
    double units = 1;
    double ns = 0; // of a unit
};

// Runs them in turns, so that a busy machine meets all alike, for so long in all and so often at
// least.
void TimeTogether(
    std::initializer_list<Timed*> works, double seconds = 0.4, int32_t fewestRounds = 3);

// A pass over a picture in its forms; those that it doesn't have are empty.
struct PassCase
{
    std::string name;
    int64_t units = 0; // of a run
    std::function<void()> run; // on one thread
    std::function<void()> scalar;
    std::function<void()> floor;
    std::function<void()> banded; // in row bands
    const char* unit = "pixel";
};

// Adds a line for one thread and, if it has bands, one for two.
void TimePass(BenchTable& table, const PassCase& pass);

// Runs what is given with the kernels' scalar forms.
void WithScalarKernels(const std::function<void()>& run);

}
