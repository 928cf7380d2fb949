#include "apps/player/RunningPlayer.h"

#include "apps/player/collection/Song.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

#include <unistd.h>

namespace pxvis::player {

namespace {

constexpr QLatin1StringView serviceName("org.pxvis.Player");
constexpr QLatin1StringView objectPath("/org/pxvis/Player");
constexpr QLatin1StringView connectionName("pxvis-running");
constexpr int patience = 4000; // ms; as long as a start may take on a slow machine

QString Display()
{
    return qEnvironmentVariable("DISPLAY");
}

bool Ask(const QDBusConnection& connection, const QList<QUrl>& files)
{
    // Root may be on the bus of a user's.
    const QDBusReply<uint> user = connection.interface()->serviceUid(serviceName);
    if (!user.isValid() || user.value() != geteuid())
        return false;
    QStringList addresses;
    for (const QUrl& file : files)
        addresses.append(file.toString(QUrl::FullyEncoded));
    QDBusMessage message
        = QDBusMessage::createMethodCall(serviceName, objectPath, serviceName, "Open");
    message << addresses << Display();
    const QDBusReply<bool> isTaken = connection.call(message, QDBus::Block, patience);
    return isTaken.isValid() && isTaken.value();
}

}

RunningPlayer::~RunningPlayer()
{
    QDBusConnection::disconnectFromBus(connectionName);
}

bool RunningPlayer::HandOver(const QList<QUrl>& files)
{
    QDBusConnection connection
        = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
    if (!connection.isConnected())
        return false;
    connection.registerObject(objectPath, this, QDBusConnection::ExportScriptableInvokables);
    if (connection.registerService(serviceName))
        return false;
    if (Ask(connection, files))
        return true;
    connection.interface()->registerService(serviceName, QDBusConnectionInterface::QueueService);
    return false;
}

bool RunningPlayer::Open(const QStringList& addresses, const QString& display)
{
    if (display != Display())
        return false;
    QList<QUrl> files;
    for (const QString& address : addresses) {
        const QUrl url(address, QUrl::StrictMode);
        if (!PathOf(url).empty())
            files.append(url);
    }
    // Whoever asks waits for the answer, and files may be many.
    QMetaObject::invokeMethod(
        this, [this, files] { emit Opened(files); }, Qt::QueuedConnection);
    return true;
}

}
