#pragma once

#include "apps/player/collection/Song.h"

#include <QAbstractTableModel>
#include <QList>

#include <cstdint>

namespace pxvis::player {

enum class RepeatMode
{
    None,
    All,
    One
};

// The songs to be played, in the order of the list, and which is the current one. A model for
// views: rows can be dragged to another place, files dropped into it. User-interface thread.
class Playlist : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        ColumnTitle,
        ColumnArtist,
        ColumnAlbum,
        ColumnDuration,
        ColumnCount
    };

    static constexpr int mostSongs = 100'000;

    const Song& At(int row) const;
    int Count() const;
    int Current() const; // row; -1: none
    void SetCurrent(int row);

    // Before that row; behind the last for -1. Songs beyond mostSongs are left out; gives how many
    // were taken.
    int Insert(const QList<Song>& songs, int row = -1);
    void Remove(QList<int> rows); // the song behind it becomes current if the current one goes
    void Move(QList<int> rows, int before);
    void Clear();
    // Puts what is known now in place of what the rows with that song have.
    void Update(const Song& song);

    RepeatMode Repeat() const;
    void SetRepeat(RepeatMode mode);
    bool IsShuffled() const;
    // Each song has its turn before one comes again, and Previous goes back the way it came.
    void SetShuffled(bool shuffled);

    // The row that follows when the current song ends by itself, or by the user's wish, who isn't
    // held by RepeatMode::One; -1: none. The same until the list, the modes or the current song
    // change.
    int Next(bool byUser) const;
    int Previous() const;

    // of QAbstractTableModel: rowCount, columnCount, data, headerData, flags, mimeTypes, mimeData,
    // supportedDropActions, dropMimeData.

signals:
    void CurrentChanged();
    void ModesChanged();
    void OrderChanged(); // what follows the current song may be another one
    void UrlsDropped(const QList<QUrl>& urls, int row);
};

}
