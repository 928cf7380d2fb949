#pragma once

#include "apps/player/collection/ShuffleOrder.h"
#include "apps/player/collection/Song.h"

#include <QAbstractTableModel>
#include <QHash>
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
    Playlist();

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
    qint64 NumberAt(int row) const; // no other song's of this list, and stays while rows change
    int Count() const;
    int Current() const; // row; -1: none
    void SetCurrent(int row);

    // Before that row; behind the last for -1. Songs beyond mostSongs are left out; gives how many
    // were taken.
    int Insert(const QList<Song>& songs, int row = -1);
    // If the current song goes, the one that follows it, of those that stay, becomes current; in a
    // random order the next one.
    void Remove(QList<int> rows);
    void Move(QList<int> rows, int before);
    // Behind all others, in the order of `rows`, which are there and differ.
    void MoveToEnd(const QList<int>& rows);
    void Clear();
    // Puts what is known now in place of what the rows with that song have.
    void Update(const Song& song);
    // Why the song of these rows, as there are now, couldn't be played, for people; "" if it could.
    void SetFault(const QUrl& song, const QString& fault);
    bool IsPlayable(int row) const; // as far as known

    RepeatMode Repeat() const;
    void SetRepeat(RepeatMode mode);
    bool IsShuffled() const;
    // Each song has its turn before one comes again, and Previous goes back the way it came.
    void SetShuffled(bool shuffled);

    // The row that follows when the current song ends by itself, or by the user's wish, who isn't
    // held by RepeatMode::One; -1: none. The same until the list, the modes or the current song
    // change.
    int Next(bool byUser) const;
    int First() const; // of a new round; -1: none
    int Previous() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool dropMimeData(const QMimeData* mime, Qt::DropAction action, int row, int column,
        const QModelIndex& parent) override;

signals:
    void CurrentChanged(); // another song; not when its row becomes another one
    void ModesChanged();
    void OrderChanged(); // what follows the current song may be another one
    void UrlsDropped(const QList<QUrl>& urls, int row); // as Insert takes it

private:
    struct Entry
    {
        Song song;
        qint64 number = 0;
        QString fault; // "": none was seen
    };

    QList<int> ValidRows(QList<int> rows) const;
    QList<int> DraggedRows(const QMimeData& mime) const;
    void Rearrange(const QList<int>& order);
    void CutTail(int count);
    void MakeCurrent(int row);
    QList<int> RowsOf(const QUrl& song);
    void ShowRow(int row, const QList<int>& roles = {});
    void IndexByUrl();
    QString TextOf(const Song& song, int column) const;
    QString SpokenText(int row) const;

    QList<Entry> m_entries;
    int m_current = -1;
    RepeatMode m_repeat = RepeatMode::None;
    bool m_isShuffled = false;
    ShuffleOrder m_shuffle; // kept up while m_isShuffled

    QMultiHash<QUrl, int> m_rowsByUrl; // of the first m_indexed rows
    int m_indexed = 0;
    qint64 m_lastNumber = 0;
    const QByteArray m_dragMark; // tells what this list's rows look like on the way
};

}
