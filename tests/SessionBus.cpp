#include "SessionBus.h"

#include "TestFolder.h"

#include <chrono>
#include <thread>

namespace {

constexpr int StartSeconds = 20; // on a machine that does much else

using Clock = std::chrono::steady_clock;

// The same for all buses, since a process looks at the variable once.
const TestFolder& Folder()
{
    static const TestFolder folder;
    return folder;
}

}

SessionBus::SessionBus()
    : m_address("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + Folder().Path("bus")).c_str())
    , m_daemon({ "dbus-daemon", "--session", "--nofork", "--nopidfile",
                   "--address=unix:path=" + Folder().Path("bus") },
          Folder().Path("errors"))
{
    static int number = 0;
    m_clientName = QStringLiteral("test-%1").arg(++number);
    const auto end = Clock::now() + std::chrono::seconds(StartSeconds);
    while (!QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_clientName).isConnected()
        && Clock::now() < end) {
        QDBusConnection::disconnectFromBus(m_clientName);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

SessionBus::~SessionBus()
{
    QDBusConnection::disconnectFromBus(m_clientName);
}
