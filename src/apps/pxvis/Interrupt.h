#pragma once

#include <string>

namespace pxvis {

// While it lives, the first Ctrl-C, or another signal to end, only asks for the work to end; the
// second one removes the unfinished file and ends the process at once with status 130. One at a
// time.
class Interrupt
{
public:
    explicit Interrupt(const std::string& unfinishedFile);
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    static bool Requested();
};

}
