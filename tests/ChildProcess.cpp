#include "ChildProcess.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <doctest/doctest.h>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr const char* ChildMark = "PXVIS_TEST_CHILD";
constexpr int ChildSeconds = 100;

using Clock = std::chrono::steady_clock;

}

ChildProcess::ChildProcess(const std::vector<std::string>& command, const std::string& errors)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    m_process = fork();
    if (m_process != 0)
        return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (!errors.empty())
        dup2(open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600), STDERR_FILENO);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

ChildProcess::~ChildProcess()
{
    Wait(0);
}

int ChildProcess::Wait(int seconds, const std::function<void()>& meanwhile)
{
    if (m_process <= 0)
        return -1;
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    int status = -1;
    while (waitpid(m_process, &status, WNOHANG) == 0) {
        if (Clock::now() >= end)
            kill(m_process, SIGKILL);
        if (meanwhile)
            meanwhile();
        else
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void InProcessOfItsOwn(const std::function<void()>& body)
{
    if (const char* const mark = getenv(ChildMark)) {
        REQUIRE(write(atoi(mark), "", 1) == 1); // it came this far
        body();
        return;
    }
    std::string filter = "--test-case=";
    for (const char* c = doctest::getContextOptions()->currentTest->m_name; *c; ++c)
        filter += *c == ',' ? std::string("\\,") : std::string(1, *c);
    int ends[2] = {};
    REQUIRE(pipe(ends) == 0);
    setenv(ChildMark, std::to_string(ends[1]).c_str(), 1);
    ChildProcess process({ "/proc/self/exe", filter, "--minimal" });
    unsetenv(ChildMark);
    close(ends[1]);
    CHECK(process.Wait(ChildSeconds) == 0);
    char byte = 0;
    CHECK(read(ends[0], &byte, 1) == 1);
    close(ends[0]);
}
