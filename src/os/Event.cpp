#include "os/Event.h"

#include "os/Clock.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace pxvis::os {

namespace {

constexpr size_t mostItems = 16;
constexpr int64_t nanosecondsPerMillisecond = 1'000'000;

// Rounded up: a wait that ends a little early would look like one that failed.
int MillisecondsUntil(int64_t end)
{
    const int64_t left = end - MonotonicNanoseconds();
    return left <= 0
        ? 0
        : static_cast<int>((left + nanosecondsPerMillisecond - 1) / nanosecondsPerMillisecond);
}

}

Event::Event(bool manualReset)
    : m_descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , m_manualReset(manualReset)
{
}

void Event::Set()
{
    if (!IsOpen())
        return;
    m_order.fetch_add(1, std::memory_order_release);
    [[maybe_unused]] const int result = ::eventfd_write(m_descriptor.Get(), 1);
}

void Event::Reset()
{
    if (!IsOpen())
        return;
    eventfd_t count = 0;
    [[maybe_unused]] const int result = ::eventfd_read(m_descriptor.Get(), &count);
}

bool Event::Take()
{
    if (!m_manualReset) {
        eventfd_t count = 0;
        if (::eventfd_read(m_descriptor.Get(), &count) != 0)
            return false;
    }
    m_order.load(std::memory_order_acquire);
    return true;
}

bool Event::Wait(int32_t milliseconds)
{
    const WaitItem items[] = { this };
    return WaitAny(items, milliseconds) == 0;
}

int WaitAny(std::span<const WaitItem> items, int32_t milliseconds)
{
    pollfd polled[mostItems];
    if (items.size() > mostItems)
        return WaitFailed;
    bool any = false;
    for (size_t i = 0; i < items.size(); ++i) {
        const Event* event = items[i].event;
        polled[i] = { event ? event->GetDescriptor() : items[i].descriptor, POLLIN, 0 };
        any = any || polled[i].fd >= 0; // the system passes over the others
    }
    if (!any && milliseconds < 0)
        return WaitFailed;
    const int64_t end
        = MonotonicNanoseconds() + std::max(milliseconds, 0) * nanosecondsPerMillisecond;
    for (int left = std::max(milliseconds, -1);;) {
        const int ready = ::poll(polled, items.size(), left);
        if (ready < 0 && errno != EINTR && errno != EAGAIN)
            return WaitFailed;
        for (size_t i = 0; ready > 0 && i < items.size(); ++i) {
            if (polled[i].revents != 0 && (!items[i].event || items[i].event->Take()))
                return static_cast<int>(i);
        }
        if (ready == 0)
            return WaitTimeout;
        if (milliseconds >= 0)
            left = MillisecondsUntil(end);
    }
}

}
