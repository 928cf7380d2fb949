#include "os/Thread.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <new>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

namespace pxvis::os {

struct Thread::Native
{
    static void* Run(void* native)
    {
        auto* self = static_cast<Native*>(native);
        self->body(self->context);
        return nullptr;
    }

    void (*body)(void*);
    void* context;
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
    std::unique_ptr<Native> native(new (std::nothrow) Native { body, context });
    if (!native)
        return ENOMEM;
    // A thread starts with the mask of the one that makes it.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    for (const int fault : { SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS })
        sigdelset(&all, fault);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const int error = pthread_create(&native->thread, nullptr, Native::Run, native.get());
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (error == 0)
        m_native = std::move(native);
    return error;
}

int ProcessorCount()
{
    cpu_set_t processors;
    if (sched_getaffinity(0, sizeof processors, &processors) == 0)
        return std::max(CPU_COUNT(&processors), 1);
    return std::max(static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN)), 1);
}

void Thread::Join()
{
    if (!m_native)
        return;
    pthread_join(m_native->thread, nullptr);
    m_native.reset();
}

}
