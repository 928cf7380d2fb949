#include "apps/player/Session.h"

#include "apps/player/PlayerSettings.h"
#include "apps/player/collection/Playlist.h"
#include "apps/player/collection/PlaylistFile.h"
#include "apps/player/sound/Playback.h"
#include "os/UserFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include <algorithm>
#include <climits>
#include <cmath>

namespace pxvis::player {

namespace {

constexpr int fullVolume = 1000; // as it is kept
constexpr int firstVolume = 700;

// A file that can't be understood stays, under another name, which it gives; "" if it can't.
QString PutAside(const QString& path)
{
    constexpr int mostKept = 1000;
    for (int i = 1; i <= mostKept; ++i) {
        const QString name = path + QStringLiteral(".unreadable-%1").arg(i);
        if (QFile::rename(path, name))
            return name;
    }
    return {};
}

}

QList<Song> SongsOf(const Playlist& playlist)
{
    QList<Song> songs;
    songs.reserve(playlist.Count());
    for (int row = 0; row < playlist.Count(); ++row)
        songs.append(playlist.At(row));
    return songs;
}

Session::Session(Playlist& playlist, Playback& playback, PlayerSettings& settings)
    : m_playlist(playlist)
    , m_playback(playback)
    , m_settings(settings)
{
    const auto note = [this] { m_isListChanged = true; };
    connect(&playlist, &Playlist::rowsInserted, this, note);
    connect(&playlist, &Playlist::rowsRemoved, this, note);
    connect(&playlist, &Playlist::rowsMoved, this, note);
    connect(&playlist, &Playlist::layoutChanged, this, note);
    connect(&playlist, &Playlist::modelReset, this, note);
    connect(&playlist, &Playlist::dataChanged, this,
        [note](const QModelIndex&, const QModelIndex&, const QList<int>& roles) {
            if (roles.isEmpty()) // else only how it is shown, as with each new song
                note();
        });
}

QString Session::PlaylistPath()
{
    const std::string folder = os::UserFolder("XDG_DATA_HOME", ".local/share");
    return folder.empty() ? QString()
                          : QFile::decodeName(folder.c_str()) + "/pxvis/player/playlist.m3u8";
}

Session::~Session() = default;

Session::Place Session::Restore(QString& fault)
{
    fault.clear();
    QList<Song> songs;
    const QString path = PlaylistPath();
    LockKept(path, fault);
    QString listFault;
    if (QFile::exists(path) && !PlaylistFile::Read(path, songs, listFault) && m_mayKeep) {
        const QString aside = PutAside(path);
        m_mayKeep = !aside.isEmpty();
        fault = m_mayKeep ? tr("%1 It is kept as %2.").arg(listFault, aside) : listFault;
    }
    m_playlist.Insert(songs);
    m_isListChanged = false;

    const int repeat = m_settings.Number("Repeat", static_cast<int>(RepeatMode::None));
    if (repeat >= static_cast<int>(RepeatMode::None) && repeat <= static_cast<int>(RepeatMode::One))
        m_playlist.SetRepeat(static_cast<RepeatMode>(repeat));
    m_playlist.SetShuffled(m_settings.Number("Shuffle", 0) != 0);
    m_playback.SetVolume(
        std::clamp(m_settings.Number("Volume", firstVolume), 0, fullVolume) / double(fullVolume));
    m_playback.SetMuted(m_settings.Number("Muted", 0) != 0);

    Place place;
    place.row = m_settings.Number("Row", -1);
    if (place.row < 0 || place.row >= m_playlist.Count())
        place.row = m_playlist.Count() > 0 ? 0 : -1;
    else
        place.position = std::max(m_settings.Number("Position", 0), 0);
    return place;
}

// One player of a user keeps what it is at: of two, the last to end would take the other's list.
void Session::LockKept(const QString& path, QString& fault)
{
    if (path.isEmpty())
        return;
    QDir().mkpath(QFileInfo(path).path());
    m_lock = std::make_unique<QLockFile>(path + ".lock");
    m_lock->setStaleLockTime(0); // held for as long as a player runs
    m_mayKeep = m_lock->tryLock(0) || m_lock->error() != QLockFile::LockFailedError;
    if (!m_mayKeep)
        fault = tr("Another pxvis player is open: this one won't be remembered.");
}

bool Session::Keep(QString& fault)
{
    fault.clear();
    if (!m_mayKeep)
        return true;
    KeepNumber("Repeat", static_cast<int>(m_playlist.Repeat()));
    KeepNumber("Shuffle", m_playlist.IsShuffled());
    KeepNumber("Volume", static_cast<int>(std::lround(m_playback.Volume() * fullVolume)));
    KeepNumber("Muted", m_playback.IsMuted());
    KeepNumber("Row", m_playlist.Current());
    // A song that ended is no place to go on from.
    const bool isStopped = m_playback.State() == PlayState::Stopped;
    const qint64 position = isStopped ? 0 : m_playback.Position();
    KeepNumber("Position", static_cast<int>(std::clamp<qint64>(position, 0, INT_MAX)));

    const QString path = PlaylistPath();
    if (!m_isListChanged || path.isEmpty())
        return true;
    QDir().mkpath(QFileInfo(path).path());
    if (!PlaylistFile::Write(path, SongsOf(m_playlist), false, fault))
        return false;
    m_isListChanged = false;
    return true;
}

void Session::KeepNumber(const char* name, int value)
{
    constexpr int neverKept = INT_MIN;
    if (m_settings.Number(name, neverKept) != value)
        m_settings.SetNumber(name, value);
}

}
