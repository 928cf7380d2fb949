#pragma once

#include "foundation/OQChar.h"

#include <cstdint>

// A lock that is held. The caller owns it; destroying it gives it back, on any thread, and so does
// the end of the process. Slots: add at the end only.
class IOQNamedLock
{
public:
    virtual ~IOQNamedLock() = default;
};

// Locks by name, each with one holder among all threads of all processes of the user. A service of
// the tools module: any thread, nothing is thrown. Slots: add at the end only.
class IOQNamedLocks
{
public:
    // Names are compared exactly and may be any text but an empty one. Waits `waitMilliseconds` for
    // another holder, which may be the calling thread; 0: not at all; below 0: as long as it takes.
    // Null if another one still holds the lock, and where there can be none.
    virtual IOQNamedLock* Acquire(const OQChar* name, int32_t waitMilliseconds) = 0;

protected:
    ~IOQNamedLocks() = default;
};
