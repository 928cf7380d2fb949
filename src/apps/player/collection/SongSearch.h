#pragma once

#include "apps/player/collection/Song.h"

#include <QCollator>
#include <QList>
#include <QStringList>

#include <atomic>
#include <cstddef>
#include <set>
#include <string>

namespace pxvis::os {
struct FolderIdentity;
}

namespace pxvis::player {

// Gathers the songs that addresses of files, folders and playlists stand for. One thread; may take
// as long as the disks like, and ends early once `stop` is true.
class SongSearch
{
public:
    static constexpr int mostDepth = 64; // folders in folders
    static constexpr size_t mostEntries = 1'000'000; // of all folders together
    static constexpr int mostFaults = 100;

    explicit SongSearch(const std::atomic<bool>& stop);
    ~SongSearch();

    void Add(const QUrl& url);

    const QList<Song>& Songs() const { return m_songs; }

    // A line for each address, and each folder, that was of no use.
    const QStringList& Faults() const { return m_faults; }

private:
    void AddSong(const Song& song);
    void AddPlaylist(const std::string& path);
    void AddFolder(const std::string& path, int depth);
    void AddFault(const QString& thing, const char* reason);

    const std::atomic<bool>& m_stop;
    QCollator m_order;
    QList<Song> m_songs;
    QStringList m_faults;
    std::set<os::FolderIdentity> m_seen; // below one address
    size_t m_entries = 0;
    bool m_isFull = false;
};

}
