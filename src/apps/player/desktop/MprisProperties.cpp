#include "apps/player/desktop/MprisProperties.h"

#include <QStringList>

namespace pxvis::player {

namespace {

// Tags may hold whole books, and all of the desktop would get them with each change.
constexpr qsizetype mostCharacters = 4096;

QString NameOfState(PlayerStatus::State state)
{
    switch (state) {
    case PlayerStatus::State::Playing:
        return QStringLiteral("Playing");
    case PlayerStatus::State::Paused:
        return QStringLiteral("Paused");
    default:
        return QStringLiteral("Stopped");
    }
}

void AddText(QVariantMap& map, const QString& name, const QString& text)
{
    if (!text.isEmpty())
        map.insert(name, text.left(mostCharacters));
}

QVariantMap MetadataOf(const PlayerStatus& status)
{
    QVariantMap map;
    map.insert(
        QStringLiteral("mpris:trackid"), QVariant::fromValue(MprisProperties::TrackOf(status)));
    if (status.trackNumber < 0)
        return map;
    if (status.length >= 0)
        map.insert(QStringLiteral("mpris:length"), status.length);
    if (!status.coverFile.isEmpty())
        map.insert(QStringLiteral("mpris:artUrl"),
            QUrl::fromLocalFile(status.coverFile).toString(QUrl::FullyEncoded));
    AddText(map, QStringLiteral("xesam:url"), status.url.toString(QUrl::FullyEncoded));
    AddText(map, QStringLiteral("xesam:title"), status.title);
    AddText(map, QStringLiteral("xesam:album"), status.album);
    if (!status.artist.isEmpty())
        map.insert(
            QStringLiteral("xesam:artist"), QStringList { status.artist.left(mostCharacters) });
    return map;
}

// As the desktop file has them.
const QStringList& MimeTypes()
{
    static const QStringList types { "audio/aac", "audio/ac3", "audio/flac", "audio/mp2",
        "audio/mp4", "audio/mpeg", "audio/mpegurl", "audio/ogg", "audio/opus", "audio/vnd.wave",
        "audio/vorbis", "audio/wav", "audio/webm", "audio/x-aiff", "audio/x-ape", "audio/x-flac",
        "audio/x-flac+ogg", "audio/x-m4a", "audio/x-matroska", "audio/x-mp3", "audio/x-mpeg",
        "audio/x-mpegurl", "audio/x-ms-wma", "audio/x-musepack", "audio/x-opus+ogg",
        "audio/x-speex", "audio/x-speex+ogg", "audio/x-vorbis", "audio/x-vorbis+ogg", "audio/x-wav",
        "audio/x-wavpack", "application/ogg", "application/vnd.apple.mpegurl" };
    return types;
}

}

MprisProperties MprisProperties::Of(const PlayerStatus& status)
{
    constexpr double onlyRate = 1.0;
    const bool hasTrack = status.trackNumber >= 0;
    MprisProperties properties;
    properties.root = {
        { QStringLiteral("CanQuit"), true },
        { QStringLiteral("CanRaise"), true },
        { QStringLiteral("CanSetFullscreen"), true },
        { QStringLiteral("Fullscreen"), status.isFullScreen },
        { QStringLiteral("HasTrackList"), false },
        { QStringLiteral("Identity"), QStringLiteral("pxvis") },
        { QStringLiteral("DesktopEntry"), QStringLiteral("pxvis-player") },
        { QStringLiteral("SupportedUriSchemes"), QStringList { QStringLiteral("file") } },
        { QStringLiteral("SupportedMimeTypes"), MimeTypes() },
    };
    properties.player = {
        { QStringLiteral("PlaybackStatus"), NameOfState(status.state) },
        { QStringLiteral("LoopStatus"), NameOf(status.loop) },
        { QStringLiteral("Shuffle"), status.isShuffled },
        { QStringLiteral("Volume"), status.volume },
        { QStringLiteral("Metadata"), MetadataOf(status) },
        { QStringLiteral("Rate"), onlyRate },
        { QStringLiteral("MinimumRate"), onlyRate },
        { QStringLiteral("MaximumRate"), onlyRate },
        { QStringLiteral("CanGoNext"), status.canGoNext },
        { QStringLiteral("CanGoPrevious"), status.canGoPrevious },
        { QStringLiteral("CanPlay"), status.canPlay },
        { QStringLiteral("CanPause"), status.canPlay },
        { QStringLiteral("CanSeek"), status.canSeek && hasTrack },
        { QStringLiteral("CanControl"), true },
    };
    return properties;
}

QDBusObjectPath MprisProperties::TrackOf(const PlayerStatus& status)
{
    if (status.trackNumber < 0)
        return QDBusObjectPath(QStringLiteral("/org/mpris/MediaPlayer2/TrackList/NoTrack"));
    return QDBusObjectPath(QStringLiteral("/org/pxvis/track/%1").arg(status.trackNumber));
}

QString MprisProperties::NameOf(PlayerStatus::Loop loop)
{
    switch (loop) {
    case PlayerStatus::Loop::Track:
        return QStringLiteral("Track");
    case PlayerStatus::Loop::Playlist:
        return QStringLiteral("Playlist");
    default:
        return QStringLiteral("None");
    }
}

bool MprisProperties::LoopOf(const QString& name, PlayerStatus::Loop& loop)
{
    using Loop = PlayerStatus::Loop;
    loop = Loop::None;
    for (const Loop each : { Loop::None, Loop::Track, Loop::Playlist }) {
        if (NameOf(each) == name) {
            loop = each;
            return true;
        }
    }
    return false;
}

}
