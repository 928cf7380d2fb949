#include "apps/pxvis/PlayerProcess.h"

#include "os/ModulePath.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pxvis {

namespace {

constexpr const char* programName = "pxvis-player";
constexpr int toEnd[] = { SIGINT, SIGTERM, SIGHUP, SIGQUIT };

bool IsProgram(const std::string& path)
{
    struct stat status
    {
    };

    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)
        && access(path.c_str(), X_OK) == 0;
}

// In the child, where nothing may be called that takes memory or a lock. Gives the fault's number.
int BecomeProgram(char* const* arguments, const sigset_t& blocked, pid_t parent)
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) // which ended before it could be noticed
        _exit(1);
    signal(SIGPIPE, SIG_DFL);
    signal(SIGXFSZ, SIG_DFL);
    sigprocmask(SIG_SETMASK, &blocked, nullptr);
    execv(arguments[0], arguments);
    return errno;
}

}

PlayerProcess::PlayerProcess()
{
    signal(SIGCHLD, SIG_DFL); // whoever started us may have had it ignored
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGCHLD);
    for (const int signal : toEnd)
        sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, &m_blockedBefore);
    m_signals = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

PlayerProcess::~PlayerProcess()
{
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    if (m_signals >= 0)
        close(m_signals);
    sigprocmask(SIG_SETMASK, &m_blockedBefore, nullptr);
}

std::string PlayerProcess::Find()
{
    if (const std::string folder = os::ExecutableFolder(); !folder.empty()) {
        if (std::string beside = folder + '/' + programName; IsProgram(beside))
            return beside;
    }
    const char* path = std::getenv("PATH");
    for (std::string_view rest = path ? path : ""; !rest.empty();) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        // A relative folder would have it depend on where one is what is run.
        if (std::string file = std::string(folder) + '/' + programName;
            folder.starts_with('/') && IsProgram(file))
            return file;
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
    }
    return {};
}

bool PlayerProcess::Start(
    const std::string& program, const std::vector<std::string>& arguments, std::string& error)
{
    std::vector<char*> list { const_cast<char*>(program.c_str()) };
    for (const std::string& argument : arguments)
        list.push_back(const_cast<char*>(argument.c_str()));
    list.push_back(nullptr);

    int report[2]; // closed by the program's start, or the fault's number
    int fault = 0;
    if (m_signals < 0 || pipe2(report, O_CLOEXEC) != 0) {
        error = program + ": can't be started: " + std::strerror(errno);
        return false;
    }
    const pid_t parent = getpid();
    m_process = fork();
    if (m_process == 0) {
        fault = BecomeProgram(list.data(), m_blockedBefore, parent);
        [[maybe_unused]] const ssize_t told = write(report[1], &fault, sizeof fault);
        _exit(127);
    }
    if (m_process < 0)
        fault = errno;
    close(report[1]);
    ssize_t got = 0;
    while (m_process > 0 && (got = read(report[0], &fault, sizeof fault)) < 0 && errno == EINTR) { }
    close(report[0]);
    if (got > 0) {
        waitpid(m_process, nullptr, 0);
        m_process = -1;
    }
    if (m_process < 0)
        error = program + ": can't be started: " + std::strerror(fault);
    return m_process > 0;
}

std::optional<int> PlayerProcess::Wait(int milliseconds)
{
    pollfd descriptor { m_signals, POLLIN, 0 };
    poll(&descriptor, 1, milliseconds);
    signalfd_siginfo signal {};
    while (read(m_signals, &signal, sizeof signal) == sizeof signal) {
        if (signal.ssi_signo != SIGCHLD)
            PassOn(static_cast<int>(signal.ssi_signo));
    }
    int status = 0;
    if (waitpid(m_process, &status, WNOHANG) != m_process)
        return std::nullopt;
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void PlayerProcess::PassOn(int signal)
{
    kill(m_process, m_isEnding ? SIGKILL : signal);
    m_isEnding = true;
}

}
