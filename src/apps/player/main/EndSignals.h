#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace pxvis::player {

// Turns the signals that ask a process to end into a call from the event loop. A second one ends
// it at once. One at a time; needs the application object.
class EndSignals
{
public:
    explicit EndSignals(std::function<void()> end);
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

}
