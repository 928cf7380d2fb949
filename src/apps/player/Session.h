#pragma once

#include "apps/player/collection/Song.h"

#include <QList>
#include <QObject>
#include <QString>

#include <memory>

class QLockFile;

namespace pxvis::player {

class Playback;
class PlayerSettings;
class Playlist;

QList<Song> SongsOf(const Playlist& playlist);

// What the player was at, kept over its end, and over a crash as far as Keep was called: songs and
// modes of the list, the place in the song, the volume. User-interface thread.
class Session : public QObject
{
    Q_OBJECT

public:
    // The three outlive it.
    Session(Playlist& playlist, Playback& playback, PlayerSettings& settings);
    ~Session() override;

    struct Place
    {
        int row = -1;
        qint64 position = 0; // ms
    };

    // Fills the playlist and sets modes and volume; gives where it was. `fault`: one line, if the
    // list couldn't be read, whose file is put aside, or another player has it.
    Place Restore(QString& fault);

    // Writes what has changed since the last time, unless another player does that. False, with a
    // line, if it failed.
    bool Keep(QString& fault);

    static QString PlaylistPath(); // $XDG_DATA_HOME/pxvis/player/playlist.m3u8

private:
    void LockKept(const QString& path, QString& fault);
    void KeepNumber(const char* name, int value);

    Playlist& m_playlist;
    Playback& m_playback;
    PlayerSettings& m_settings;
    std::unique_ptr<QLockFile> m_lock;
    bool m_mayKeep = true;
    bool m_isListChanged = false;
};

}
