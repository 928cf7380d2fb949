#include "XvfbDisplay.h"

#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int StartMilliseconds = 20000; // on a machine that does much else

// Below 0 if there is no process to be had. The child keeps `kept` open, if that is one.
pid_t StartProcess(const std::vector<std::string>& command, int kept)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child != 0)
        return child;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int nothing = open("/dev/null", O_RDWR);
    for (int standard = 0; standard <= 2; ++standard)
        dup2(nothing, standard);
    if (kept >= 0)
        fcntl(kept, F_SETFD, 0);
    if (getppid() == parent) // it may have ended before the request above
        execvp(arguments[0], arguments.data());
    _exit(127);
}

void EndProcess(pid_t process)
{
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

// The server writes its number and a line end once it takes clients.
std::string ReadDisplayName(int pipe)
{
    std::string name = ":";
    char character = 0;
    for (;;) {
        pollfd waited { .fd = pipe, .events = POLLIN, .revents = 0 };
        if (poll(&waited, 1, StartMilliseconds) <= 0 || read(pipe, &character, 1) != 1)
            return {};
        if (character == '\n')
            return name;
        name += character;
    }
}

}

XvfbDisplay::XvfbDisplay()
{
    int ends[2] = {};
    if (pipe2(ends, O_CLOEXEC) != 0)
        return;
    m_server = StartProcess({ "Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0",
                                "1280x1024x24", "-nolisten", "tcp", "-noreset" },
        ends[1]);
    close(ends[1]);
    if (m_server > 0)
        m_name = ReadDisplayName(ends[0]);
    close(ends[0]);
    if (m_name.empty()) {
        Kill();
        return;
    }
    if (const char* before = getenv("DISPLAY"))
        m_displayBefore = before;
    setenv("DISPLAY", m_name.c_str(), 1);
}

XvfbDisplay::~XvfbDisplay()
{
    for (const pid_t program : m_programs)
        EndProcess(program);
    Kill();
    if (m_name.empty())
        return;
    if (m_displayBefore.empty())
        unsetenv("DISPLAY");
    else
        setenv("DISPLAY", m_displayBefore.c_str(), 1);
}

bool XvfbDisplay::Start(const std::vector<std::string>& command)
{
    const pid_t program = StartProcess(command, -1);
    if (program > 0)
        m_programs.push_back(program);
    return program > 0;
}

void XvfbDisplay::Kill()
{
    if (m_server > 0)
        EndProcess(m_server);
    m_server = -1;
}

void XvfbDisplay::Pause()
{
    if (m_server > 0)
        kill(m_server, SIGSTOP);
}
