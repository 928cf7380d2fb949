#pragma once

#include "foundation/IOQReader.h"

// The module's three exports. Several users of one process may each start and end the module; in
// between it makes readers. Any thread.
extern "C" {
__attribute__((visibility("default"))) void OQReaderInitialize(const void* parameter);
__attribute__((visibility("default"))) void OQReaderUninitialize();

// Null outside of that, and without memory.
__attribute__((visibility("default"))) IOQReader* CreateGenericReaderDLL();
}
