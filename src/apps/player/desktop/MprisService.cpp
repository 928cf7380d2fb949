#include "apps/player/desktop/MprisService.h"

#include "apps/player/desktop/MprisObject.h"
#include "apps/player/desktop/MprisProperties.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QTimer>

namespace pxvis::player {

namespace {

constexpr QLatin1StringView objectPath("/org/mpris/MediaPlayer2");
constexpr QLatin1StringView connectionName("pxvis-mpris");

QVariantMap ChangesOf(const QVariantMap& before, const QVariantMap& now)
{
    QVariantMap changes;
    for (auto value = now.begin(); value != now.end(); ++value) {
        if (before.value(value.key()) != *value)
            changes.insert(value.key(), *value);
    }
    return changes;
}

}

struct MprisService::Bus
{
    explicit Bus(PlayerControls& played)
        : connection(QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName))
        , controls(played)
        , object(played)
        , shown(MprisProperties::Of(played.Status()))
    {
        announcement.setSingleShot(true);
        QObject::connect(&announcement, &QTimer::timeout, [this] { AnnounceChanges(); });
    }

    ~Bus() { QDBusConnection::disconnectFromBus(connectionName); }

    // Last of all: from then on others ask.
    void TakeName()
    {
        QString name = QStringLiteral("org.mpris.MediaPlayer2.pxvis");
        isOnBus = connection.isConnected() && connection.registerVirtualObject(objectPath, &object)
            && (connection.registerService(name)
                || connection.registerService(
                    name + QStringLiteral(".instance%1").arg(QCoreApplication::applicationPid())));
    }

    void AnnounceChanges()
    {
        const MprisProperties now = MprisProperties::Of(controls.Status());
        Announce(MprisProperties::rootInterface, ChangesOf(shown.root, now.root));
        Announce(MprisProperties::playerInterface, ChangesOf(shown.player, now.player));
        shown = now;
    }

    void Announce(const QString& interface, const QVariantMap& changes) const
    {
        if (changes.isEmpty())
            return;
        connection.send(QDBusMessage::createSignal(objectPath, MprisProperties::propertiesInterface,
                            QStringLiteral("PropertiesChanged"))
            << interface << changes << QStringList());
    }

    void AnnounceSeek(qint64 position) const
    {
        connection.send(QDBusMessage::createSignal(
                            objectPath, MprisProperties::playerInterface, QStringLiteral("Seeked"))
            << position);
    }

    QDBusConnection connection; // its own, so that its names go with it
    PlayerControls& controls;
    MprisObject object;
    MprisProperties shown; // as the bus knows them
    QTimer announcement; // of all that changes in one turn of the event loop
    bool isOnBus = false;
};

MprisService::MprisService(PlayerControls& controls)
    : m_bus(std::make_unique<Bus>(controls))
{
    m_bus->TakeName();
    if (!IsOnBus())
        return;
    connect(
        &controls, &PlayerControls::StatusChanged, this, [this] { m_bus->announcement.start(); });
    connect(&controls, &PlayerControls::Seeked, this,
        [this](qint64 position) { m_bus->AnnounceSeek(position); });
}

MprisService::~MprisService() = default;

bool MprisService::IsOnBus() const
{
    return m_bus->isOnBus;
}

}
