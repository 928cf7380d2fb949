#pragma once

#include "foundation/OQFolders.h"
#include "os/SharedMemory.h"

#include <memory>
#include <mutex>
#include <string>

// Holds the process's block for this module: makes and fills it, or reads what another module made.
// One of them a module, made at the first demand and never destroyed; the block's name goes at the
// end of the process whose module made it. Any thread; one lock. A process that was forked off has
// a block of its own.
class OQSharedMemory
{
public:
    static OQSharedMemory& Get();

    // Worked out at the first call in a process.
    OQProcessFolders GetFolders();

    // The next call works them out anew, and so does the next module that comes.
    void Forget();

private:
    OQSharedMemory() = default;

    bool Share(OQProcessFolders& folders);
    void RemoveName();

    std::mutex m_lock;
    int32_t m_process = 0; // that all of the rest is for; 0: none
    OQProcessFolders m_folders;
    std::unique_ptr<pxvis::os::SharedMemory> m_memory;
    std::string m_name; // of what was made here, or empty
};
