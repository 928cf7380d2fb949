#include "foundation/OQSharedMemory.h"

#include "foundation/OQLog.h"
#include "foundation/OQProcessBlock.h"
#include "foundation/OQSiblingModules.h"
#include "os/InstallPlaces.h"
#include "os/UserFolders.h"

#include <cstdlib>
#include <ctime>
#include <new>
#include <unistd.h>

using pxvis::os::SharedMemory;

namespace {

// Of this user's processes that were killed; the system keeps those of others.
void RemoveLeftOvers()
{
    for (const std::string& name : SharedMemory::Names()) {
        if (OQProcessBlock::IsLeftOver(name))
            SharedMemory::Remove(name);
    }
}

}

OQSharedMemory& OQSharedMemory::Get()
{
    static OQSharedMemory* const memory = [] {
        auto* made = new OQSharedMemory;
        std::atexit([] {
            OQSharedMemory& self = Get();
            // Whoever holds it may be a thread that a forked process doesn't have.
            if (const std::unique_lock lock(self.m_lock, std::try_to_lock); lock)
                self.RemoveName();
        });
        return made;
    }();
    return *memory;
}

OQProcessFolders OQSharedMemory::GetFolders()
{
    OQProcessFolders folders;
    {
        const std::lock_guard lock(m_lock);
        if (m_process == ::getpid())
            return m_folders;
        m_folders = OQProcessFolders::From(pxvis::os::PortableFolder(),
            pxvis::os::UserFolder("XDG_DATA_HOME", ".local/share"), pxvis::os::GetInstallPlaces());
        const bool isFirst = !Share(m_folders);
        m_process = ::getpid();
        folders = m_folders;
        if (!isFirst)
            return folders;
    }
    // Behind the lock, since the log's module may ask for folders itself; and that is no reason to
    // load it.
    if (OQSiblingModules::Get().LoadedTools())
        OQLog(OQLogInfo, u"OQSharedMemory::GetFolders",
            u"Tarnwick install path (process: %d): %s\r\n",
            { int32_t { ::getpid() }, folders.install });
    return folders;
}

// True if another module had filled the block. Where there can be none, or one that isn't to be
// trusted, each module goes by what it worked out.
bool OQSharedMemory::Share(OQProcessFolders& folders)
{
    constexpr int attempts = 20;
    constexpr timespec pause { 0, 5'000'000 };
    m_name.clear();
    m_memory = std::make_unique<SharedMemory>();
    const std::string name = OQProcessBlock::GetName();
    if (m_memory->Make(name, sizeof(OQProcessBlock))) {
        m_name = name;
        RemoveLeftOvers();
        (new (m_memory->Data()) OQProcessBlock)->Fill(folders);
        return false;
    }
    for (int i = 0; i < attempts; ++i) {
        const SharedMemory::Found found = m_memory->Open(name, sizeof(OQProcessBlock));
        if (found == SharedMemory::Found::Nothing)
            return false;
        if (found == SharedMemory::Found::Opened) {
            const auto* block = static_cast<const OQProcessBlock*>(m_memory->Data());
            if (block->version.load(std::memory_order_acquire) != 0)
                return block->Read(folders);
        }
        ::nanosleep(&pause, nullptr); // another module is at it
    }
    return false;
}

void OQSharedMemory::Forget()
{
    const std::lock_guard lock(m_lock);
    RemoveName();
    m_memory.reset();
    m_process = 0;
}

// Not that of the process which this one was forked off.
void OQSharedMemory::RemoveName()
{
    if (!m_name.empty() && m_process == ::getpid())
        SharedMemory::Remove(m_name);
    m_name.clear();
}
