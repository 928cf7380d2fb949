#include "apps/pxvis/main/Program.h"

#include "TestFolder.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

Program::Program(const std::vector<std::string>& arguments, const ProgramStreams& streams,
    Leaks leaks, const std::string& path)
    : m_process(-1)
{
    const std::string program = path.empty() ? PXVIS_BINARY_DIR "/bin/pxvis" : path;
    std::vector<char*> list { const_cast<char*>(program.c_str()) };
    for (const std::string& argument : arguments)
        list.push_back(const_cast<char*>(argument.c_str()));
    list.push_back(nullptr);
    m_process = fork();
    if (m_process != 0)
        return;
    if (leaks == Leaks::Ignored)
        setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    const rlimit noCore { 0, 0 };
    setrlimit(RLIMIT_CORE, &noCore);
    constexpr int writing = O_WRONLY | O_CREAT | O_TRUNC;
    dup2(open(streams.input.c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    dup2(open(streams.output.c_str(), writing | O_CLOEXEC, 0600), STDOUT_FILENO);
    dup2(open(streams.errors.c_str(), writing | O_CLOEXEC, 0600), STDERR_FILENO);
    execv(program.c_str(), list.data());
    _exit(127);
}

Program::~Program()
{
    if (!IsRunning())
        return;
    Signal(SIGKILL);
    Wait(10);
}

void Program::Signal(int signal) const
{
    kill(m_process, signal);
}

bool Program::IsRunning()
{
    return Wait(0) == Running;
}

int Program::Wait(double seconds)
{
    constexpr useconds_t pause = 5000;
    for (double waited = 0; m_status == Running; waited += pause * 1e-6) {
        int status = 0;
        if (wait4(m_process, &status, WNOHANG, &m_usage) == m_process)
            m_status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        else if (waited >= seconds)
            break;
        else
            usleep(pause);
    }
    return m_status;
}

static double Seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

ProgramResult RunProgram(const std::vector<std::string>& arguments, const std::string& input)
{
    constexpr double patience = 200;
    const TestFolder streams;
    streams.Write("input", input);
    Program program(arguments,
        { .errors = streams.Path("errors"),
            .output = streams.Path("output"),
            .input = streams.Path("input") },
        Leaks::Found);
    ProgramResult result;
    result.status = program.Wait(patience);
    result.output = streams.Read("output");
    result.errors = streams.Read("errors");
    result.processorSeconds = Seconds(program.Usage().ru_utime) + Seconds(program.Usage().ru_stime);
    result.mostKilobytes = program.Usage().ru_maxrss;
    return result;
}
