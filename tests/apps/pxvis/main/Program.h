#pragma once

#include <string>
#include <sys/resource.h>
#include <sys/types.h>
#include <vector>

// Files for a program's standard streams.
struct ProgramStreams
{
    std::string errors;
    std::string output = "/dev/null";
    std::string input = "/dev/null";
};

enum class Leaks
{
    Ignored, // GStreamer keeps what it has
    Found, // in builds that look for them
};

// The built program as a child process.
class Program
{
public:
    static constexpr int Running = -1000;

    // `path`: of a copy of the program; empty: where it was built.
    Program(const std::vector<std::string>& arguments, const ProgramStreams& streams,
        Leaks leaks = Leaks::Ignored, const std::string& path = {});
    // Kills what still runs.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void Signal(int signal) const;

    // The exit status, or minus the signal that ended it, or Running after that time.
    int Wait(double seconds);

    bool IsRunning();

    // What it took, once it has ended.
    const rusage& Usage() const { return m_usage; }

private:
    pid_t m_process;
    int m_status = Running;
    rusage m_usage {};
};

struct ProgramResult
{
    int status = Program::Running;
    std::string output;
    std::string errors;
    double processorSeconds = 0;
    long mostKilobytes = 0; // of memory at a time
};

// Runs the program with `input` as its standard input to the end, for some minutes at the most.
ProgramResult RunProgram(const std::vector<std::string>& arguments, const std::string& input);
