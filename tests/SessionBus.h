#pragma once

#include "ChildProcess.h"
#include "TestVariable.h"

#include <QDBusConnection>
#include <QString>

// A session bus of the test's own, with nobody on it. DBUS_SESSION_BUS_ADDRESS names it meanwhile.
class SessionBus
{
public:
    SessionBus();
    ~SessionBus();

    bool IsRunning() const { return Client().isConnected(); }

    // The test's place on it, beside that of what is tested.
    QDBusConnection Client() const { return QDBusConnection(m_clientName); }

private:
    TestVariable m_address;
    ChildProcess m_daemon;
    QString m_clientName;
};
