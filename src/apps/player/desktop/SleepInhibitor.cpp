#include "apps/player/desktop/SleepInhibitor.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <optional>
#include <xcb/xcb.h>

namespace pxvis::player {

namespace {

constexpr QLatin1StringView connectionName("pxvis-sleep");
constexpr QLatin1StringView saver("org.freedesktop.ScreenSaver"); // its name and its interface

// For desktops without such a service, and for none: to the X server it looks as if a key were
// pressed now and then.
class ServerSaver
{
public:
    ServerSaver()
    {
        constexpr int interval = 30'000; // ms; nobody lets screens go dark sooner than in a minute
        m_timer.setInterval(interval);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { Reset(); });
    }

    ~ServerSaver() { SetOn(false); }

    ServerSaver(const ServerSaver&) = delete;
    ServerSaver& operator=(const ServerSaver&) = delete;

    void SetOn(bool on)
    {
        if (on == m_timer.isActive())
            return;
        if (on) {
            m_connection = xcb_connect(nullptr, nullptr); // never null
            m_timer.start();
            Reset();
        } else {
            m_timer.stop();
            xcb_disconnect(m_connection);
        }
    }

private:
    void Reset()
    {
        xcb_force_screen_saver(m_connection, XCB_SCREEN_SAVER_RESET);
        xcb_flush(m_connection);
    }

    QTimer m_timer;
    xcb_connection_t* m_connection = nullptr;
};

QDBusMessage CallOf(const QString& method)
{
    return QDBusMessage::createMethodCall(
        saver, QStringLiteral("/org/freedesktop/ScreenSaver"), saver, method);
}

}

struct SleepInhibitor::State
{
    State()
        : connection(QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName))
        , watcher(saver, connection, QDBusServiceWatcher::WatchForOwnerChange)
    {
        QObject::connect(&watcher, &QDBusServiceWatcher::serviceOwnerChanged,
            [this](const QString&, const QString& before, const QString& now) {
                if (!before.isEmpty()) { // it took along what it had granted
                    call.reset();
                    cookie.reset();
                }
                if (!now.isEmpty())
                    Ask();
            });
    }

    // The service takes back what it has granted when the connection goes.
    ~State()
    {
        SetOn(false);
        QDBusConnection::disconnectFromBus(connectionName);
    }

    void SetOn(bool on)
    {
        if (on == isOn)
            return;
        isOn = on;
        server.SetOn(on);
        if (on)
            Ask();
        else
            Release();
    }

    void Ask()
    {
        if (!isOn || call || cookie || !connection.isConnected())
            return;
        call = std::make_unique<QDBusPendingCallWatcher>(connection.asyncCall(
            CallOf(QStringLiteral("Inhibit"))
            << QStringLiteral("pxvis")
            << QCoreApplication::translate("pxvis::player::SleepInhibitor", "Music is playing")));
        QObject::connect(call.get(), &QDBusPendingCallWatcher::finished, [this] {
            const QDBusPendingReply<uint> reply = *call;
            call.release()->deleteLater(); // it is what calls
            if (!reply.isError())
                cookie = reply.value();
            Release();
        });
    }

    void Release()
    {
        if (isOn || !cookie)
            return;
        connection.send(CallOf(QStringLiteral("UnInhibit")) << *cookie);
        cookie.reset();
    }

    QDBusConnection connection;
    QDBusServiceWatcher watcher;
    std::unique_ptr<QDBusPendingCallWatcher> call; // Inhibit, until it is answered
    std::optional<uint> cookie; // names what was granted
    bool isOn = false;
    ServerSaver server;
};

SleepInhibitor::SleepInhibitor()
    : m_state(std::make_unique<State>())
{
}

SleepInhibitor::~SleepInhibitor() = default;

void SleepInhibitor::SetOn(bool on)
{
    m_state->SetOn(on);
}

}
