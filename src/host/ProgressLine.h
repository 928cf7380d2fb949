#pragma once

#include <cstdint>
#include <string>

namespace pxvis::host {

// Where a long job stands.
struct Progress
{
    uint64_t done = 0; // pictures
    uint64_t total = 0; // pictures; 0: not known
    double pictureRate = 60; // pictures a second of the video
    double elapsedSeconds = 0;
};

// One line of at most width columns (ASCII, no line end): as much of share, bar, speed against real
// time, pictures a second and time left as fits, the first first.
std::string FormatProgress(const Progress& progress, int width);

// The line on the terminal behind standard error, written over and over; nothing where standard
// error is no terminal.
class ProgressLine
{
public:
    explicit ProgressLine(double pictureRate);

    // Takes the line away.
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Writes ten times a second at most, however often it is called.
    void Update(uint64_t done, uint64_t total);

    // Before anything else is written to the terminal.
    void Clear();

private:
    bool m_terminal;
    bool m_shown = false;
    Progress m_progress;
    int64_t m_begin; // ns of the monotonic clock
    int64_t m_next;
};

}
