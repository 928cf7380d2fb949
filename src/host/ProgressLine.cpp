#include "host/ProgressLine.h"

#include "os/Clock.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace pxvis::host {

namespace {

constexpr int64_t Second = 1'000'000'000;
constexpr int64_t Interval = Second / 10;
constexpr int UsualWidth = 80;

// Three digits at most: 0.42, 7.3, 128.
std::string Short(double value)
{
    value = std::clamp(value, 0.0, 9999.0);
    const int digits = value < 0.995 ? 2 : value < 9.95 ? 1 : 0;
    const int scale = digits == 2 ? 100 : digits == 1 ? 10 : 1;
    const auto scaled = static_cast<int>(std::lround(value * scale));
    std::string text = std::to_string(scaled / scale);
    if (digits > 0) {
        const std::string fraction = std::to_string(scaled % scale);
        text += "." + std::string(static_cast<size_t>(digits) - fraction.size(), '0') + fraction;
    }
    return text;
}

std::string TwoDigits(int64_t number)
{
    return (number < 10 ? "0" : "") + std::to_string(number);
}

// 0:07, 12:34, 1:02:03
std::string Duration(double seconds)
{
    const int64_t whole = std::lround(std::clamp(seconds, 0.0, 3.6e8));
    const int64_t minutes = whole / 60;
    const std::string tail = ":" + TwoDigits(whole % 60);
    if (minutes < 60)
        return std::to_string(minutes) + tail;
    return std::to_string(minutes / 60) + ":" + TwoDigits(minutes % 60) + tail;
}

int TerminalWidth()
{
    winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return UsualWidth;
    return size.ws_col;
}

// Progress is a courtesy: a terminal that has gone is no error.
void WriteToTerminal(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written <= 0)
            return;
        text.remove_prefix(static_cast<size_t>(written));
    }
}

}

std::string FormatProgress(const Progress& progress, int width)
{
    const double done = static_cast<double>(progress.done);
    const double total = static_cast<double>(progress.total);
    const double share = progress.total ? std::min(done / total, 1.0) : 0;
    std::string line = progress.total ? std::to_string(static_cast<int>(share * 100)) + " %"
                                      : std::to_string(progress.done) + " pictures";
    line.insert(0, line.size() < 5 ? 5 - line.size() : 0, ' ');

    std::string tail;
    const auto columns = static_cast<size_t>(std::max(width, 0));
    const auto add = [&](const std::string& part) {
        if (line.size() + tail.size() + 2 + part.size() <= columns)
            tail += "  " + part;
    };
    if (progress.elapsedSeconds > 0 && progress.done > 0) {
        const double speed = done / progress.elapsedSeconds;
        if (progress.total)
            add(Duration((total - std::min(done, total)) / speed) + " left");
        add(Short(speed / progress.pictureRate) + "x");
        add(Short(speed) + " fps");
    }
    constexpr size_t leastBar = 10;
    constexpr size_t mostBar = 40;
    const size_t used = line.size() + tail.size() + 3; // a space and two brackets
    if (progress.total && used + leastBar <= columns) {
        const size_t cells = std::min(columns - used, mostBar);
        const auto full = static_cast<size_t>(share * static_cast<double>(cells));
        line += " [" + std::string(full, '#') + std::string(cells - full, '-') + "]";
    }
    line += tail;
    return line.substr(0, columns);
}

ProgressLine::ProgressLine(double pictureRate)
    : m_terminal(isatty(STDERR_FILENO) == 1)
    , m_begin(os::MonotonicNanoseconds())
    , m_next(m_begin + Interval)
{
    m_progress.pictureRate = pictureRate;
}

ProgressLine::~ProgressLine()
{
    Clear();
}

void ProgressLine::Update(uint64_t done, uint64_t total)
{
    if (!m_terminal)
        return;
    const int64_t now = os::MonotonicNanoseconds();
    if (now < m_next)
        return;
    m_next = now + Interval;
    m_progress.done = done;
    m_progress.total = total;
    m_progress.elapsedSeconds = static_cast<double>(now - m_begin) / Second;
    // The last column stays free: some terminals go on to the next line from there.
    WriteToTerminal("\r" + FormatProgress(m_progress, TerminalWidth() - 1) + "\x1B[K");
    m_shown = true;
}

void ProgressLine::Clear()
{
    if (m_shown)
        WriteToTerminal("\r\x1B[K");
    m_shown = false;
}

}
