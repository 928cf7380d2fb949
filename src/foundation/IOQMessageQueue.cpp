#include "foundation/IOQMessageQueue.h"

#include <atomic>

namespace {

std::atomic<IOQMessageQueues*> g_queues = nullptr;

}

IOQMessageQueues* IOQMessageQueues::Get()
{
    return g_queues.load(std::memory_order_acquire);
}

void IOQMessageQueues::Install(IOQMessageQueues* queues)
{
    g_queues.store(queues, std::memory_order_release);
}
