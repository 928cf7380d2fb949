#include "os/Thread.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <new>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace pxvis::os {

namespace {

// Belongs to the new thread, which may outlive whoever started it.
struct ThreadStart
{
    static void* Run(void* argument)
    {
        const std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(argument));
        start->body(start->context);
        return nullptr;
    }

    void (*body)(void*);
    void* context;
};

constexpr int nicePerPriority = 5;
constexpr int mostNice = 19;
constexpr int leastNice = -20;

}

struct Thread::Native
{
    pthread_t thread {};
};

Thread::Thread() = default;

Thread::~Thread()
{
    Join();
}

int Thread::Start(void (*body)(void*), void* context)
{
    Join();
    std::unique_ptr<ThreadStart> start(new (std::nothrow) ThreadStart { body, context });
    std::unique_ptr<Native> native(new (std::nothrow) Native);
    if (!start || !native)
        return ENOMEM;
    // A thread starts with the mask of the one that makes it.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    for (const int fault : { SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS })
        sigdelset(&all, fault);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const int error = pthread_create(&native->thread, nullptr, ThreadStart::Run, start.get());
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (error == 0) {
        start.release();
        m_native = std::move(native);
    }
    return error;
}

void Thread::Join()
{
    if (!m_native)
        return;
    pthread_join(m_native->thread, nullptr);
    m_native.reset();
}

void Thread::Detach()
{
    if (!m_native)
        return;
    pthread_detach(m_native->thread);
    m_native.reset();
}

int CurrentThreadId()
{
    return ::gettid();
}

bool SetThreadPriority(int threadId, int priority)
{
    // Unlike what the standard says, the system keeps this value for each thread.
    const int nice
        = std::clamp(std::clamp(-priority, -15, 15) * nicePerPriority, leastNice, mostNice);
    return ::setpriority(PRIO_PROCESS, static_cast<id_t>(threadId), nice) == 0;
}

int ThreadError(int threadId)
{
    errno = 0; // -1 is a priority, too
    ::getpriority(PRIO_PROCESS, static_cast<id_t>(threadId));
    return errno;
}

int ProcessorCount()
{
    cpu_set_t processors;
    if (sched_getaffinity(0, sizeof processors, &processors) == 0)
        return std::max(CPU_COUNT(&processors), 1);
    return std::max(static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN)), 1);
}

}
