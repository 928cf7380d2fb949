#pragma once

#include <QDBusVirtualObject>

namespace pxvis::player {

class PlayerControls;

// What lies at "/org/mpris/MediaPlayer2" on the bus: answers the calls of anybody there, and those
// that make no sense with an error. User-interface thread.
class MprisObject : public QDBusVirtualObject
{
    Q_OBJECT

public:
    explicit MprisObject(PlayerControls& controls); // which outlive it

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    bool Answer(const QDBusMessage& message, QDBusMessage& answer) const;
    QVariantMap PropertiesOf(const QString& interface) const; // empty: no such interface
    QDBusMessage Get(const QDBusMessage& message) const;
    QDBusMessage Set(const QDBusMessage& message) const;

    PlayerControls& m_controls;
};

}
