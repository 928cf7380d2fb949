#include "apps/pxvis/main/Program.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

Program::Program(
    const std::vector<std::string>& arguments, const std::string& errors, const std::string& output)
    : m_process(-1)
{
    const std::string path = PXVIS_BINARY_DIR "/bin/pxvis";
    std::vector<char*> list { const_cast<char*>(path.c_str()) };
    for (const std::string& argument : arguments)
        list.push_back(const_cast<char*>(argument.c_str()));
    list.push_back(nullptr);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // GLib keeps what it has
    m_process = fork();
    if (m_process != 0)
        return;
    dup2(open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
    dup2(open(output.c_str(), O_WRONLY), STDOUT_FILENO);
    execv(path.c_str(), list.data());
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
    return Wait(0) == -1000;
}

int Program::Wait(double seconds)
{
    constexpr useconds_t pause = 5000;
    for (double waited = 0; m_status == -1000; waited += pause * 1e-6) {
        int status = 0;
        if (waitpid(m_process, &status, WNOHANG) == m_process)
            m_status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        else if (waited >= seconds)
            break;
        else
            usleep(pause);
    }
    return m_status;
}
