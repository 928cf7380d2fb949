#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

// The built program as a child process with a time-out of its own.
class Program
{
public:
    // `errors` gets what it writes to standard error, `output` what it writes to standard output.
    Program(const std::vector<std::string>& arguments, const std::string& errors,
        const std::string& output = "/dev/null");
    // Kills what still runs.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void Signal(int signal) const;

    // The exit status, or minus the signal that ended it; -1000 when it is still running then.
    int Wait(double seconds);

    bool IsRunning();

private:
    pid_t m_process;
    int m_status = -1000;
};
