#pragma once

#include "os/Descriptor.h"

#include <cstdint>
#include <string>

namespace pxvis::os {

// A lock that processes, and threads of one, take by a file that exists for nothing else. The file
// is made if it isn't there and never removed: others may be waiting for this very one. The system
// gives the lock back when its holder dies. One thread at a time.
class FileLock
{
public:
    FileLock() = default;
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // False if another one still holds the lock after `waitMilliseconds`, or if the file can't be
    // opened or isn't a regular one.
    bool Acquire(const std::string& path, int32_t waitMilliseconds);
    void Release();

private:
    Descriptor m_file;
};

}
