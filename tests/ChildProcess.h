#pragma once

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

// A program that ends with the object, or with the test, however that ends.
class ChildProcess
{
public:
    // `errors`: a file for its standard error; empty: the test's own.
    explicit ChildProcess(const std::vector<std::string>& command, const std::string& errors = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // What it ended with; minus the signal that ended it. After so many seconds it is killed.
    int Wait(int seconds, const std::function<void()>& meanwhile = {});

private:
    pid_t m_process;
};

// Runs the body of the current test case in a process of its own, for what can be made once a
// process only. Its checks print there; here it must end by itself, with nothing failed.
void InProcessOfItsOwn(const std::function<void()>& body);
