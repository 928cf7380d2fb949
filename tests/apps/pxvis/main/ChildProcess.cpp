#include "ChildProcess.h"

#include <doctest/doctest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// A stream of the child: a file in memory, so that nobody waits for the other's reading.
class Stream
{
public:
    explicit Stream(const std::string& content = {})
        : m_file(memfd_create("stream", MFD_CLOEXEC))
    {
        REQUIRE(m_file >= 0);
        REQUIRE(write(m_file, content.data(), content.size()) == std::ssize(content));
        lseek(m_file, 0, SEEK_SET);
    }

    ~Stream() { close(m_file); }

    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    int File() const { return m_file; }

    std::string Content() const
    {
        std::string content(static_cast<size_t>(lseek(m_file, 0, SEEK_END)), '\0');
        REQUIRE(pread(m_file, content.data(), content.size(), 0) == std::ssize(content));
        return content;
    }

private:
    int m_file;
};

double Seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}

ChildResult RunChild(const std::vector<std::string>& command, const std::string& input)
{
    const std::array<Stream, 3> streams { Stream(input), Stream(), Stream() };
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);

    const pid_t child = fork();
    REQUIRE(child >= 0);
    if (child == 0) {
        const rlimit processor { 60, 60 };
        const rlimit noCore { 0, 0 };
        setrlimit(RLIMIT_CPU, &processor);
        setrlimit(RLIMIT_CORE, &noCore);
        // What waits for something that never comes ends, too.
        std::signal(SIGALRM, SIG_DFL);
        alarm(200);
        for (int number = 0; number < 3; ++number)
            dup2(streams[static_cast<size_t>(number)].File(), number);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    ChildResult result;
    int status = 0;
    rusage usage {};
    REQUIRE(wait4(child, &status, 0, &usage) == child);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.output = streams[1].Content();
    result.errors = streams[2].Content();
    result.processorSeconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    result.mostKilobytes = usage.ru_maxrss;
    return result;
}
