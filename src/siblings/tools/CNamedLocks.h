#pragma once

#include "foundation/IOQNamedLocks.h"

// Each lock is a file in the folder that the user's processes share, which stays when nobody holds
// it.
class CNamedLocks final : public IOQNamedLocks
{
public:
    IOQNamedLock* Acquire(const OQChar* name, int32_t waitMilliseconds) override;
};
