#pragma once

#include <string>

namespace pxvis {

// While it lives, the first Ctrl-C, or another signal to end, only asks for the work to end; the
// second one removes the files that were told and ends the process at once with status 130. One at
// a time.
class Interrupt
{
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    // Two at most, each for as long as this lives.
    void RemoveAtEnd(const std::string& file);

    static bool Requested();
};

}
