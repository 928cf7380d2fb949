#pragma once

#include "apps/player/collection/Song.h"

#include <QList>
#include <QObject>
#include <QStringList>

#include <memory>

namespace pxvis::player {

// Turns what a user opens or drops, files, folders with all below them and playlists, into songs,
// on a thread of its own, and then reads their tags. User-interface thread.
class SongFinder : public QObject
{
    Q_OBJECT

public:
    SongFinder();
    ~SongFinder() override; // waits for at most the file that it is at

    // Folders in the order of their names as people sort them, "2" before "10". Gives the number
    // that Found has for these.
    int Find(const QList<QUrl>& urls);

    // Reads the tags of each; Read comes for each in turn. Songs asked for later come first.
    void ReadTags(const QList<Song>& songs);

    void Cancel(); // all that hasn't come yet

signals:
    // `faults`: a line for each thing that is no song, no folder or not there.
    void Found(int number, const QList<pxvis::player::Song>& songs, const QStringList& faults);
    void Read(const pxvis::player::Song& song);

private:
    struct Work;

    std::unique_ptr<Work> m_work;
};

}
