#include "apps/player/main/EndSignals.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace pxvis::player {

namespace {

constexpr int endSignals[] = { SIGINT, SIGTERM, SIGHUP };
int g_pipe[2] = { -1, -1 };

void OnSignal(int number)
{
    const char byte = 0;
    const auto ignored = write(g_pipe[1], &byte, 1);
    static_cast<void>(ignored);
    std::signal(number, SIG_DFL);
}

}

EndSignals::EndSignals(std::function<void()> end)
{
    if (pipe2(g_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(g_pipe[0], QSocketNotifier::Read);
    QObject::connect(
        m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [end = std::move(end)] {
            char bytes[8];
            const auto ignored = read(g_pipe[0], bytes, sizeof bytes);
            static_cast<void>(ignored);
            end();
        });
    for (const int number : endSignals)
        std::signal(number, OnSignal);
}

EndSignals::~EndSignals()
{
    if (!m_notifier)
        return;
    for (const int number : endSignals)
        std::signal(number, SIG_DFL);
    m_notifier.reset();
    close(g_pipe[0]);
    close(g_pipe[1]);
}

}
