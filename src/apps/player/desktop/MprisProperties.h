#pragma once

#include "apps/player/desktop/PlayerControls.h"

#include <QDBusObjectPath>
#include <QVariantMap>

namespace pxvis::player {

// What the two interfaces of MPRIS show of a player: values by the names of their properties, of
// the types that the bus takes.
struct MprisProperties
{
    static constexpr QLatin1StringView rootInterface { "org.mpris.MediaPlayer2" };
    static constexpr QLatin1StringView playerInterface { "org.mpris.MediaPlayer2.Player" };
    static constexpr QLatin1StringView propertiesInterface { "org.freedesktop.DBus.Properties" };

    QVariantMap root;
    QVariantMap player; // but Position, which is never announced

    static MprisProperties Of(const PlayerStatus& status);

    // Names the current track as long as it is that. Commands that bear another come too late.
    static QDBusObjectPath TrackOf(const PlayerStatus& status);

    static QString NameOf(PlayerStatus::Loop loop);
    static bool LoopOf(const QString& name, PlayerStatus::Loop& loop); // false: no such
};

}
