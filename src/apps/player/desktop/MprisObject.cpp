#include "apps/player/desktop/MprisObject.h"

#include "apps/player/desktop/MprisProperties.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <algorithm>
#include <cmath>
#include <limits>

namespace pxvis::player {

namespace {

constexpr QLatin1StringView rootInterface = MprisProperties::rootInterface;
constexpr QLatin1StringView playerInterface = MprisProperties::playerInterface;
constexpr QLatin1StringView propertiesInterface = MprisProperties::propertiesInterface;
constexpr QLatin1StringView position("Position");

// The sum, or the nearest there is to it.
qint64 Sum(qint64 one, qint64 other)
{
    qint64 sum = 0;
    if (!__builtin_add_overflow(one, other, &sum))
        return sum;
    return other > 0 ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
}

void SeekBy(PlayerControls& controls, qint64 offset)
{
    const PlayerStatus status = controls.Status();
    if (!status.canSeek || status.trackNumber < 0)
        return;
    const qint64 target = Sum(controls.Position(), offset);
    if (status.length < 0 || target <= status.length)
        controls.SeekTo(std::max<qint64>(target, 0));
    else if (status.canGoNext)
        controls.Next();
}

void SetPosition(PlayerControls& controls, const QDBusObjectPath& track, qint64 target)
{
    const PlayerStatus status = controls.Status();
    const bool isCurrent
        = status.trackNumber >= 0 && track == MprisProperties::TrackOf(status) && status.canSeek;
    if (isCurrent && target >= 0 && (status.length < 0 || target <= status.length))
        controls.SeekTo(target);
}

QDBusError OpenUri(PlayerControls& controls, const QString& text)
{
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || !url.isLocalFile() || url.toLocalFile().isEmpty())
        return { QDBusError::NotSupported, QStringLiteral("Only files can be opened") };
    controls.OpenUrl(url);
    return {};
}

QDBusError PlayPause(PlayerControls& controls)
{
    const PlayerStatus status = controls.Status();
    if (!status.canPlay)
        return { QDBusError::Failed, QStringLiteral("There is nothing to play") };
    if (status.state == PlayerStatus::State::Playing)
        controls.Pause();
    else
        controls.Play();
    return {};
}

QDBusError SetVolume(PlayerControls& controls, double volume)
{
    if (!std::isfinite(volume))
        return { QDBusError::InvalidArgs, QStringLiteral("This is no volume") };
    controls.SetVolume(std::clamp(volume, 0.0, 1.0));
    return {};
}

QDBusError SetLoop(PlayerControls& controls, const QString& name)
{
    PlayerStatus::Loop loop = PlayerStatus::Loop::None;
    if (!MprisProperties::LoopOf(name, loop))
        return { QDBusError::InvalidArgs, QStringLiteral("LoopStatus: None, Track or Playlist") };
    controls.SetLoop(loop);
    return {};
}

// Of other rates there are none; 0 is what older remote controls do for a pause.
QDBusError SetRate(PlayerControls& controls, double rate)
{
    if (rate == 0 && controls.Status().canPlay)
        controls.Pause();
    return {};
}

struct Method
{
    using Call = QDBusError (*)(PlayerControls& controls, const QVariantList& arguments);

    QLatin1StringView interface;
    QLatin1StringView name;
    QLatin1StringView signature; // each letter is one argument
    Call call;
};

// What does only that.
template <void (PlayerControls::*operation)()>
QDBusError Do(PlayerControls& controls, const QVariantList&)
{
    (controls.*operation)();
    return {};
}

// The same while the player shows that it can.
template <void (PlayerControls::*operation)(), bool PlayerStatus::*can>
QDBusError DoIf(PlayerControls& controls, const QVariantList&)
{
    if (controls.Status().*can)
        (controls.*operation)();
    return {};
}

// Whoever ends the player may also end what handles the call, so that is gone through first.
QDBusError Quit(PlayerControls& controls, const QVariantList&)
{
    QMetaObject::invokeMethod(&controls, &PlayerControls::Quit, Qt::QueuedConnection);
    return {};
}

const Method methods[] = {
    { rootInterface, QLatin1StringView("Raise"), {}, Do<&PlayerControls::Raise> },
    { rootInterface, QLatin1StringView("Quit"), {}, Quit },
    { playerInterface, QLatin1StringView("Next"), {},
        DoIf<&PlayerControls::Next, &PlayerStatus::canGoNext> },
    { playerInterface, QLatin1StringView("Previous"), {},
        DoIf<&PlayerControls::Previous, &PlayerStatus::canGoPrevious> },
    { playerInterface, QLatin1StringView("Pause"), {},
        DoIf<&PlayerControls::Pause, &PlayerStatus::canPlay> },
    { playerInterface, QLatin1StringView("Play"), {},
        DoIf<&PlayerControls::Play, &PlayerStatus::canPlay> },
    { playerInterface, QLatin1StringView("Stop"), {}, Do<&PlayerControls::Stop> },
    { playerInterface, QLatin1StringView("PlayPause"), {},
        [](PlayerControls& controls, const QVariantList&) { return PlayPause(controls); } },
    { playerInterface, QLatin1StringView("Seek"), QLatin1StringView("x"),
        [](PlayerControls& controls, const QVariantList& arguments) {
            SeekBy(controls, arguments[0].toLongLong());
            return QDBusError();
        } },
    { playerInterface, QLatin1StringView("SetPosition"), QLatin1StringView("ox"),
        [](PlayerControls& controls, const QVariantList& arguments) {
            SetPosition(controls, arguments[0].value<QDBusObjectPath>(), arguments[1].toLongLong());
            return QDBusError();
        } },
    { playerInterface, QLatin1StringView("OpenUri"), QLatin1StringView("s"),
        [](PlayerControls& controls, const QVariantList& arguments) {
            return OpenUri(controls, arguments[0].toString());
        } },
};

struct WritableProperty
{
    using Write = QDBusError (*)(PlayerControls& controls, const QVariant& value);

    QLatin1StringView interface;
    QLatin1StringView name;
    Write write; // a value of the type that reading gives
};

const WritableProperty writableProperties[] = {
    { rootInterface, QLatin1StringView("Fullscreen"),
        [](PlayerControls& controls, const QVariant& value) {
            controls.SetFullScreen(value.toBool());
            return QDBusError();
        } },
    { playerInterface, QLatin1StringView("Shuffle"),
        [](PlayerControls& controls, const QVariant& value) {
            controls.SetShuffled(value.toBool());
            return QDBusError();
        } },
    { playerInterface, QLatin1StringView("LoopStatus"),
        [](PlayerControls& controls, const QVariant& value) {
            return SetLoop(controls, value.toString());
        } },
    { playerInterface, QLatin1StringView("Volume"),
        [](PlayerControls& controls, const QVariant& value) {
            return SetVolume(controls, value.toDouble());
        } },
    { playerInterface, QLatin1StringView("Rate"),
        [](PlayerControls& controls, const QVariant& value) {
            return SetRate(controls, value.toDouble());
        } },
};

const WritableProperty* FindWritable(const QString& interface, const QString& name)
{
    const auto* found = std::find_if(std::begin(writableProperties), std::end(writableProperties),
        [&](const auto& each) { return each.interface == interface && each.name == name; });
    return found == std::end(writableProperties) ? nullptr : found;
}

QDBusMessage AnswerOf(const QDBusMessage& message, const QDBusError& error)
{
    return error.isValid() ? message.createErrorReply(error) : message.createReply();
}

QDBusMessage NoSuch(const QDBusMessage& message, QDBusError::ErrorType type)
{
    return message.createErrorReply(type, QStringLiteral("There is none of this name"));
}

}

MprisObject::MprisObject(PlayerControls& controls)
    : m_controls(controls)
{
}

QString MprisObject::introspect(const QString&) const
{
    QString xml;
    for (const QLatin1StringView interface : { rootInterface, playerInterface }) {
        xml += QStringLiteral("<interface name=\"%1\">\n").arg(interface);
        for (const Method& method : methods) {
            if (method.interface != interface)
                continue;
            xml += QStringLiteral("<method name=\"%1\">").arg(method.name);
            for (const QChar type : QString(method.signature))
                xml += QStringLiteral("<arg type=\"%1\" direction=\"in\"/>").arg(type);
            xml += QStringLiteral("</method>\n");
        }
        if (interface == playerInterface)
            xml += QStringLiteral("<signal name=\"Seeked\"><arg type=\"x\"/></signal>\n");
        const QVariantMap properties = PropertiesOf(interface);
        for (auto property = properties.begin(); property != properties.end(); ++property) {
            const bool isWritable = FindWritable(interface, property.key());
            xml += QStringLiteral("<property name=\"%1\" type=\"%2\" access=\"%3\">")
                       .arg(property.key(),
                           QLatin1StringView(QDBusMetaType::typeToSignature(property->metaType())),
                           QLatin1StringView(isWritable ? "readwrite" : "read"));
            if (property.key() == position)
                xml += QStringLiteral("<annotation value=\"false\" name="
                                      "\"org.freedesktop.DBus.Property.EmitsChangedSignal\"/>");
            xml += QStringLiteral("</property>\n");
        }
        xml += QStringLiteral("</interface>\n");
    }
    return xml;
}

bool MprisObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection)
{
    QDBusMessage answer;
    if (!Answer(message, answer))
        return false; // Qt tells the caller, and what there is
    if (message.isReplyRequired())
        connection.send(answer);
    return true;
}

bool MprisObject::Answer(const QDBusMessage& message, QDBusMessage& answer) const
{
    const QString interface = message.interface(); // callers may leave it out
    const auto isCalled
        = [&](QLatin1StringView of, QLatin1StringView name, QLatin1StringView signature) {
              return (interface.isEmpty() || interface == of) && message.member() == name
                  && message.signature() == signature;
          };
    for (const Method& method : methods) {
        if (isCalled(method.interface, method.name, method.signature)) {
            answer = AnswerOf(message, method.call(m_controls, message.arguments()));
            return true;
        }
    }
    if (isCalled(propertiesInterface, QLatin1StringView("Get"), QLatin1StringView("ss"))) {
        answer = Get(message);
        return true;
    }
    if (isCalled(propertiesInterface, QLatin1StringView("GetAll"), QLatin1StringView("s"))) {
        const QVariantMap properties = PropertiesOf(message.arguments().at(0).toString());
        answer = properties.isEmpty() ? NoSuch(message, QDBusError::UnknownInterface)
                                      : message.createReply(properties);
        return true;
    }
    if (isCalled(propertiesInterface, QLatin1StringView("Set"), QLatin1StringView("ssv"))) {
        answer = Set(message);
        return true;
    }
    return false;
}

QVariantMap MprisObject::PropertiesOf(const QString& interface) const
{
    MprisProperties properties = MprisProperties::Of(m_controls.Status());
    if (interface == rootInterface)
        return properties.root;
    if (interface != playerInterface)
        return {};
    properties.player.insert(position, m_controls.Position());
    return properties.player;
}

QDBusMessage MprisObject::Get(const QDBusMessage& message) const
{
    const QVariantMap properties = PropertiesOf(message.arguments().at(0).toString());
    const auto property = properties.find(message.arguments().at(1).toString());
    if (properties.isEmpty())
        return NoSuch(message, QDBusError::UnknownInterface);
    if (property == properties.end())
        return NoSuch(message, QDBusError::UnknownProperty);
    return message.createReply(QVariant::fromValue(QDBusVariant(*property)));
}

QDBusMessage MprisObject::Set(const QDBusMessage& message) const
{
    const QString interface = message.arguments().at(0).toString();
    const QString name = message.arguments().at(1).toString();
    const QVariant value = message.arguments().at(2).value<QDBusVariant>().variant();
    const QVariantMap properties = PropertiesOf(interface);
    const auto property = properties.find(name);
    if (properties.isEmpty())
        return NoSuch(message, QDBusError::UnknownInterface);
    if (property == properties.end())
        return NoSuch(message, QDBusError::UnknownProperty);
    const WritableProperty* writable = FindWritable(interface, name);
    if (!writable)
        return message.createErrorReply(
            QDBusError::PropertyReadOnly, QStringLiteral("It can't be set"));
    if (value.metaType() != property->metaType())
        return message.createErrorReply(
            QDBusError::InvalidArgs, QStringLiteral("The value is of another type"));
    return AnswerOf(message, writable->write(m_controls, value));
}

}
