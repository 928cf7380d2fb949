#include "apps/pxvis/bench/BenchTable.h"

#include "apps/pxvis/JsonText.h"
#include "foundation/OQEngineContext.h"
#include "kernels/KernelForm.h"
#include "os/Clock.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <ostream>

namespace pxvis::bench {

namespace {

// With so many digits behind the point.
std::string Number(double value, int digits)
{
    std::array<char, 64> text;
    const auto end = std::to_chars(
        text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits)
                         .ptr;
    return { text.data(), end };
}

std::string NumberOrNull(const std::optional<double>& value)
{
    return value ? Number(*value, 3) : "null";
}

std::string Column(const std::string& text, size_t width)
{
    return text.size() < width ? std::string(width - text.size(), ' ') + text : " " + text;
}

// "12.3x" of how often b goes into a.
std::string Ratio(const std::optional<double>& a, double b)
{
    return a && b > 0 ? Number(*a / b, 2) : "";
}

}

BenchTable::BenchTable(
    std::ostream& output, std::ostream& errors, const std::string& filter, bool json)
    : m_output(output)
    , m_errors(errors)
    , m_filter(filter)
    , m_json(json)
{
}

bool BenchTable::Wants(const std::string& name) const
{
    return name.find(m_filter) != std::string::npos;
}

void BenchTable::Add(const Figure& figure)
{
    ++m_count;
    if (m_json) {
        m_output << "{\"name\":" << JsonText(figure.name) << ",\"threads\":" << figure.threads
                 << ",\"ns\":" << Number(figure.ns, 3)
                 << ",\"scalar_ns\":" << NumberOrNull(figure.scalarNs)
                 << ",\"floor_ns\":" << NumberOrNull(figure.floorNs) << ",\"unit\":\""
                 << figure.unit << "\"}" << std::endl;
        return;
    }
    if (m_count == 1)
        m_output << "name                                        threads           ns  unit"
                    "   times faster than scalar   times its floor\n";
    std::string name = figure.name;
    name.resize(std::max<size_t>(name.size(), 44), ' ');
    m_output << name << Column(std::to_string(figure.threads), 7)
             << Column(Number(figure.ns, figure.ns < 1000 ? 3 : 0), 13) << "  "
             << Column(figure.unit, 5) << Column(Ratio(figure.scalarNs, figure.ns), 26)
             << Column(figure.floorNs ? Ratio(figure.ns, *figure.floorNs) : "", 18) << std::endl;
}

void BenchTable::Fail(const std::string& reason)
{
    m_hasFailed = true;
    m_errors << "pxvis: bench: " << reason;
}

void TimeTogether(std::initializer_list<Timed*> works, double seconds, int32_t fewestRounds)
{
    for (Timed* work : works)
        work->ns = std::numeric_limits<double>::infinity();
    const int64_t start = os::MonotonicNanoseconds();
    const auto inTime
        = [&] { return static_cast<double>(os::MonotonicNanoseconds() - start) < seconds * 1e9; };
    for (int32_t round = 0; round < fewestRounds || inTime(); ++round) {
        for (Timed* work : works) {
            const int64_t before = os::MonotonicNanoseconds();
            work->run();
            const auto taken = static_cast<double>(os::MonotonicNanoseconds() - before);
            work->ns = std::min(work->ns, taken / work->units);
        }
    }
}

void TimePass(BenchTable& table, const PassCase& pass)
{
    OQEngineContext context { .virtualClock = true, .mostThreads = 2 };
    const OQEngineContextScope scope(&context);
    const std::function<void()> nothing = [] {};
    const auto timed = [&](const std::function<void()>& form) {
        return Timed { form ? form : nothing, static_cast<double>(pass.units) };
    };
    Timed run = timed(pass.run);
    Timed banded = timed(pass.banded);
    Timed scalar = timed(pass.scalar);
    Timed floor = timed(pass.floor);
    TimeTogether({ &run, &banded, &scalar, &floor }, 0.7);
    const auto ifThere = [](const std::function<void()>& form, const Timed& time) {
        return form ? std::optional(time.ns) : std::nullopt;
    };
    const auto scalarNs = ifThere(pass.scalar, scalar);
    const auto floorNs = ifThere(pass.floor, floor);
    table.Add({ pass.name, pass.unit, 1, run.ns, scalarNs, floorNs });
    if (pass.banded)
        table.Add({ pass.name, pass.unit, 2, banded.ns, scalarNs, floorNs });
}

void WithScalarKernels(const std::function<void()>& run)
{
    const kernels::KernelForm chosen = kernels::ChosenKernels();
    kernels::ChooseKernels(kernels::KernelForm::Scalar);
    run();
    kernels::ChooseKernels(chosen);
}

}
