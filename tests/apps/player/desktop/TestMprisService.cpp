#include "apps/player/desktop/MprisService.h"

#include "TestFolder.h"
#include "apps/player/desktop/DesktopTesting.h"
#include "apps/player/desktop/PlayerControls.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>

#include <doctest/doctest.h>
#include <limits>

using namespace pxvis::player;

namespace {

const QString path = QStringLiteral("/org/mpris/MediaPlayer2");
const QString root = QStringLiteral("org.mpris.MediaPlayer2");
const QString player = QStringLiteral("org.mpris.MediaPlayer2.Player");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");

// The signals that come from a path on the bus.
class SignalLog : public QObject
{
    Q_OBJECT

public:
    SignalLog(QDBusConnection connection, const QString& path)
    {
        for (const char* name : { "PropertiesChanged", "Seeked" })
            connection.connect({}, path, {}, name, this, SLOT(Note(QDBusMessage)));
    }

    QList<QDBusMessage> signalsSeen;

private slots:

    void Note(const QDBusMessage& message) { signalsSeen += message; }
};

class FakePlayer : public PlayerControls
{
public:
    PlayerStatus Status() const override { return status; }

    qint64 Position() const override { return position; }

    void Raise() override { calls += "Raise"; }

    void Quit() override { calls += "Quit"; }

    void Play() override { calls += "Play"; }

    void Pause() override { calls += "Pause"; }

    void Stop() override { calls += "Stop"; }

    void Next() override { calls += "Next"; }

    void Previous() override { calls += "Previous"; }

    void SeekTo(qint64 to) override { calls += QString("SeekTo %1").arg(to); }

    void OpenUrl(const QUrl& url) override { calls += "Open " + url.toLocalFile(); }

    void SetVolume(double volume) override { calls += QString("Volume %1").arg(volume); }

    void SetShuffled(bool on) override { calls += QString("Shuffled %1").arg(on); }

    void SetLoop(PlayerStatus::Loop loop) override { calls += QString("Loop %1").arg(int(loop)); }

    void SetFullScreen(bool on) override { calls += QString("FullScreen %1").arg(on); }

    // What was called since the last time.
    QString Take() { return std::exchange(calls, {}).join(", "); }

    PlayerStatus status;
    qint64 position = 5'000'000;
    QStringList calls;
};

struct Desktop : BusApplication
{
    FakePlayer player;
    MprisService service { player };

    QDBusMessage Call(
        const QString& interface, const QString& member, const QVariantList& arguments)
    {
        QDBusMessage message
            = QDBusMessage::createMethodCall(root + ".pxvis", path, interface, member);
        message.setArguments(arguments);
        return bus.Client().call(message, QDBus::BlockWithGui, 30000);
    }

    // What the player was told, or the name of the error that came back.
    QString Do(const QString& member, const QVariantList& arguments = {},
        const QString& interface = ::player)
    {
        const QDBusMessage answer = Call(interface, member, arguments);
        QCoreApplication::processEvents(); // Quit is only posted
        return answer.type() == QDBusMessage::ErrorMessage ? answer.errorName().section('.', -1)
                                                           : player.Take();
    }

    QString Set(const char* name, const QVariant& value, const QString& interface = ::player)
    {
        return Do("Set", { interface, name, QVariant::fromValue(QDBusVariant(value)) }, properties);
    }

    QVariantMap All(const QString& interface)
    {
        return qdbus_cast<QVariantMap>(
            Call(properties, "GetAll", { interface }).arguments().value(0));
    }

    void Play()
    {
        player.status.state = PlayerStatus::State::Playing;
        player.status.canPlay = player.status.canSeek = player.status.canGoNext = true;
        player.status.trackNumber = 7;
        player.status.url = QUrl::fromLocalFile("/music/a ü.flac");
        player.status.title = "Tide";
        player.status.artist = "Ida";
        player.status.album = QString(100'000, 'x');
        player.status.coverFile = "/cache/cover 1.png";
        player.status.length = 60'000'000;
    }
};

QVariant Track(const char* track)
{
    return QVariant::fromValue(QDBusObjectPath(track));
}

}

TEST_CASE("The desktop sees the player, with every property in its type")
{
    Desktop desktop;
    REQUIRE(desktop.service.IsOnBus());
    QVariantMap all = desktop.All(root);
    const QStringList types = all["SupportedMimeTypes"].toStringList();
    const std::string desktopFile
        = BytesOf(PXVIS_SOURCE_DIR "/packaging/desktop/pxvis-player.desktop");
    CHECK(desktopFile.find("\nMimeType=" + types.join(';').toStdString() + ";\n")
        != std::string::npos);
    QVariantMap metadata = qdbus_cast<QVariantMap>(desktop.All(player)["Metadata"]);
    CHECK(metadata.keys() == QStringList("mpris:trackid"));
    CHECK(metadata["mpris:trackid"] == Track("/org/mpris/MediaPlayer2/TrackList/NoTrack"));

    desktop.Play();
    all = desktop.All(player);
    CHECK(all["PlaybackStatus"] == "Playing");
    CHECK(all["Position"] == qint64(5'000'000));
    metadata = qdbus_cast<QVariantMap>(all["Metadata"]);
    CHECK(metadata["mpris:trackid"] == Track("/org/pxvis/track/7"));
    CHECK(metadata["mpris:artUrl"] == "file:///cache/cover%201.png");
    CHECK(metadata["xesam:url"] == "file:///music/a%20%C3%BC.flac");
    CHECK(metadata["xesam:artist"] == QStringList("Ida"));
    CHECK(metadata["xesam:album"].toString().size() == 4096);

    const QString described = desktop.Call("org.freedesktop.DBus.Introspectable", "Introspect", {})
                                  .arguments()
                                  .value(0)
                                  .toString();
    for (auto value = all.begin(); value != all.end(); ++value) {
        const QString type = value.key() == "Metadata"
            ? "a{sv}"
            : QDBusMetaType::typeToSignature(value->metaType());
        CHECK(described.contains(QString("\"%1\" type=\"%2\"").arg(value.key(), type)));
    }
}

TEST_CASE(
    "Commands reach the player where it shows that it can, and wishes outside of the song don't")
{
    Desktop desktop;
    for (const char* command : { "Play", "Pause", "Next", "Previous" })
        CHECK(desktop.Do(command) == "");
    CHECK(desktop.Do("Seek", { qint64(1) }) == "");
    CHECK(desktop.Do("PlayPause") == "Failed");
    CHECK(desktop.Do("Stop") == "Stop");
    CHECK(desktop.Do("Raise", {}, root) == "Raise");
    CHECK(desktop.Do("Quit", {}, root) == "Quit");

    desktop.Play();
    CHECK(desktop.Do("PlayPause") == "Pause");
    desktop.player.status.state = PlayerStatus::State::Paused;
    CHECK(desktop.Do("PlayPause") == "Play");
    CHECK(desktop.Do("Next", {}, {}) == "Next"); // the interface may be left out
    CHECK(desktop.Do("Previous") == "");

    CHECK(desktop.Do("Seek", { qint64(10) }) == "SeekTo 5000010");
    CHECK(desktop.Do("Seek", { qint64(-6'000'000) }) == "SeekTo 0");
    CHECK(desktop.Do("Seek", { std::numeric_limits<qint64>::max() }) == "Next");
    CHECK(desktop.Do("Seek", { std::numeric_limits<qint64>::min() }) == "SeekTo 0");
    const QVariant current = Track("/org/pxvis/track/7");
    CHECK(desktop.Do("SetPosition", { current, qint64(60'000'000) }) == "SeekTo 60000000");
    CHECK(desktop.Do("SetPosition", { current, qint64(60'000'001) }) == "");
    CHECK(desktop.Do("SetPosition", { Track("/org/pxvis/track/6"), qint64(1) }) == "");

    CHECK(desktop.Do("OpenUri", { "file:///music/a%20b.ogg" }) == "Open /music/a b.ogg");
    for (const char* uri : { "http://host/a.ogg", "/music/a.ogg", "file:", "", "file://%zz" })
        CHECK(desktop.Do("OpenUri", { uri }) == "NotSupported");
}

TEST_CASE("What can be set is set, and what makes no sense is answered with an error")
{
    Desktop desktop;
    desktop.Play();
    CHECK(desktop.Set("Volume", 0.25) == "Volume 0.25");
    CHECK(desktop.Set("Volume", 1e300) == "Volume 1");
    CHECK(desktop.Set("Shuffle", true) == "Shuffled 1");
    CHECK(desktop.Set("LoopStatus", "Playlist") == "Loop 2");
    CHECK(desktop.Set("Fullscreen", true, root) == "FullScreen 1");
    CHECK(desktop.Set("Rate", 2.0) == "");
    CHECK(desktop.Set("Rate", 0.0) == "Pause");

    CHECK(desktop.Set("Volume", std::numeric_limits<double>::quiet_NaN()) == "InvalidArgs");
    CHECK(desktop.Set("Volume", Track("/a")) == "InvalidArgs");
    CHECK(desktop.Set("LoopStatus", QString(1'000'000, 'x')) == "InvalidArgs");
    CHECK(desktop.Set("Position", qint64(1)) == "PropertyReadOnly");
    CHECK(desktop.Set("Volume", 1.0, root) == "UnknownProperty");
    CHECK(desktop.Set("Volume", 1.0, "org.nobody") == "UnknownInterface");
    CHECK(desktop.Do("Get", { player, "Nothing" }, properties) == "UnknownProperty");
    CHECK(desktop.Do("Get", { 1, 2 }, properties).startsWith("Unknown"));
    CHECK(desktop.Do("Seek", { "far" }) == "UnknownInterface");
    CHECK(desktop.Do(QString(200, 'M')).startsWith("Unknown"));
    CHECK(desktop.Do("Pause") == "Pause"); // it is still there
}

TEST_CASE("What changes in one turn is told once, and nothing else is")
{
    Desktop desktop;
    SignalLog log(desktop.bus.Client(), path);
    desktop.Call(player, "Stop", {}); // signals are listened to by now
    desktop.player.status.volume = 0.5;
    emit desktop.player.StatusChanged();
    desktop.player.status.isShuffled = true;
    desktop.player.position = 1;
    emit desktop.player.StatusChanged();
    REQUIRE(desktop.WaitUntil([&] { return log.signalsSeen.size() == 1; }));
    QVariantList told = log.signalsSeen.at(0).arguments();
    CHECK(log.signalsSeen.at(0).member() == "PropertiesChanged");
    CHECK(told[0] == player);
    CHECK(
        qdbus_cast<QVariantMap>(told[1]) == QVariantMap { { "Volume", 0.5 }, { "Shuffle", true } });

    emit desktop.player.StatusChanged(); // but nothing did
    desktop.player.status.isFullScreen = true;
    emit desktop.player.StatusChanged();
    emit desktop.player.Seeked(77);
    REQUIRE(desktop.WaitUntil([&] { return log.signalsSeen.size() == 3; }));
    CHECK(log.signalsSeen.at(1).member() == "Seeked");
    CHECK(log.signalsSeen.at(1).arguments() == QVariantList { qint64(77) });
    told = log.signalsSeen.at(2).arguments();
    CHECK(told[0] == root);
    CHECK(qdbus_cast<QVariantMap>(told[1]) == QVariantMap { { "Fullscreen", true } });
}

TEST_CASE("A second player has a name of its own, and without a bus there is no harm")
{
    {
        BusApplication first;
        REQUIRE(first.bus.Client().registerService(root + ".pxvis"));
        FakePlayer player;
        const MprisService service(player);
        CHECK(service.IsOnBus());
        const QString name
            = root + QString(".pxvis.instance%1").arg(QCoreApplication::applicationPid());
        CHECK(first.bus.Client().interface()->isServiceRegistered(name));
    }
    const TestVariable nowhere("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    FakePlayer player;
    const MprisService service(player);
    CHECK(!service.IsOnBus());
    emit player.StatusChanged();
    emit player.Seeked(1);
}

#include "TestMprisService.moc"
