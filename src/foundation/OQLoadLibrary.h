#pragma once

#include "foundation/OQString.h"
#include "os/DynamicLibrary.h"

#include <cstdint>

enum OQLoadFlags : uint32_t
{
    OQLoadPlain = 0,
    OQLoadFromItsFolder = 8, // what a path already says here: nothing is ever searched for
    OQLoadLogFailure = 0x80000000,
};

// Unloads what `holder` has and loads the library at the absolute path; false for an empty one.
// With OQLoadLogFailure a failure goes to the log and the debug output; not for a caller that holds
// the lock of the sibling modules, which the log needs.
bool OQLoadLibrary(pxvis::os::DynamicLibrary& holder, const OQString& path, uint32_t flags);
