#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

// An X server with a screen in memory, on a display number of its own, for as long as the object
// lives; it ends with the process as well, however that ends. DISPLAY names it meanwhile. To be
// made by the thread that destroys it: the server ends when that thread does.
class XvfbDisplay
{
public:
    XvfbDisplay();
    ~XvfbDisplay();
    XvfbDisplay(const XvfbDisplay&) = delete;
    XvfbDisplay& operator=(const XvfbDisplay&) = delete;

    // False if there is no Xvfb to be had.
    bool IsRunning() const { return m_server > 0; }

    const std::string& GetName() const { return m_name; } // ":7"; empty if it doesn't run

    // A program such as a window manager, ended before the server. False if it can't be started;
    // that it isn't installed shows only in what it doesn't do.
    bool Start(const std::vector<std::string>& command);

    // Takes the server from its clients, as a crash of it does.
    void Kill();

    // From now on it answers nobody, as if it hung.
    void Pause();

private:
    pid_t m_server = -1;
    std::string m_name;
    std::string m_displayBefore; // empty: there was none
    std::vector<pid_t> m_programs;
};
