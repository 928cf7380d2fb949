#pragma once

#include <cstdint>

namespace pxvis::os {

// When this process was started, in ticks since the system's start: with the process's number it
// names one process for as long as the system runs. 0 if the system doesn't tell.
uint64_t ProcessStartTime();

// The same for all of a program in a process, and another one once the process has gone on with
// another program, though its number and its start are the same. 0 if the system doesn't tell.
uint32_t ProgramNumber();

// Is there a process of that number, whoever's it is?
bool ProcessExists(int64_t number);

}
