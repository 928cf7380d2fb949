#pragma once

#include <csignal>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace pxvis {

// The player's program as a child, in a process group of its own, so that Ctrl-C reaches it through
// us alone. It gets SIGTERM should this process end first, and is killed with the object. While
// that lives, signals to end are blocked here and go to the child, the second one as SIGKILL. One
// at a time, by the thread that lives longest.
class PlayerProcess
{
public:
    PlayerProcess();
    ~PlayerProcess();
    PlayerProcess(const PlayerProcess&) = delete;
    PlayerProcess& operator=(const PlayerProcess&) = delete;

    // Where the program is: beside this one, or else by PATH. Empty if it is nowhere.
    static std::string Find();

    // Once. False, and one line, if it can't be started.
    bool Start(
        const std::string& program, const std::vector<std::string>& arguments, std::string& error);

    // Waits for so long at most; the exit status, or 128 and the signal's number, once it has
    // ended.
    std::optional<int> Wait(int milliseconds);

private:
    void PassOn(int signal);

    pid_t m_process = -1; // while it hasn't ended
    int m_signals = -1; // a descriptor that tells those that are blocked
    sigset_t m_blockedBefore;
    bool m_isEnding = false;
};

}
