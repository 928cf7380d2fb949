#pragma once

#include "apps/player/collection/Song.h"

#include <QList>
#include <QString>

namespace pxvis::player {

// Playlists as m3u8 files: UTF-8, a path or address a line, "#EXTINF:seconds,artist - title" before
// it, with the file's name for a title that isn't known. m3u files are read as well, as UTF-8 or,
// where that isn't, windows-1252. Paths are taken from the file's folder on. Songs in the network
// are left out, and so is all that isn't a file. Whether the songs are there is not looked for. Any
// thread.
struct PlaylistFile
{
    static bool IsPlaylist(const QString& path); // by its ending

    static constexpr int mostBytes = 16 * 1024 * 1024;
    static constexpr int mostLineBytes = 8192;

    // False with one line. What is beyond mostBytes or Playlist::mostSongs is left out, and so are
    // longer lines.
    static bool Read(const QString& path, QList<Song>& songs, QString& error);

    // The file is there whole or as it was before, in a folder that is made if need be. Paths below
    // that are written from there on if `relative`.
    static bool Write(const QString& path, const QList<Song>& songs, bool relative, QString& error);
};

}
