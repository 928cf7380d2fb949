#include "apps/player/collection/SongSearch.h"

#include "apps/player/collection/Playlist.h"
#include "apps/player/collection/PlaylistFile.h"
#include "os/File.h"
#include "os/Folder.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

namespace pxvis::player {

namespace {

// What GStreamer has plug-ins for in its base, good, ugly and libav sets.
constexpr std::string_view songEndings[] = { "3g2", "3gp", "aac", "ac3", "aif", "aifc", "aiff",
    "amr", "ape", "asf", "au", "avi", "awb", "caf", "dsf", "dts", "eac3", "flac", "flv", "m2ts",
    "m4a", "m4b", "m4v", "mka", "mkv", "mov", "mp1", "mp2", "mp3", "mp4", "mpc", "mpeg", "mpg",
    "mts", "oga", "ogg", "ogm", "ogv", "ogx", "opus", "snd", "spx", "tta", "vob", "w64", "wav",
    "webm", "wma", "wmv", "wv" };
static_assert(std::is_sorted(std::begin(songEndings), std::end(songEndings)));

bool IsSongName(const std::string& name)
{
    const size_t dot = name.rfind('.');
    if (dot == std::string::npos)
        return false;
    std::string ending = name.substr(dot + 1);
    for (char& character : ending) {
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character | 0x20);
    }
    return std::binary_search(std::begin(songEndings), std::end(songEndings), ending);
}

bool IsThere(const std::string& path)
{
    return os::FileExists(path) || os::FolderExists(path);
}

// The plain order of characters, which "C" stands for, doesn't know numbers.
QLocale SortLocale()
{
    const QLocale locale = QLocale().collation();
    return locale.language() == QLocale::C ? QLocale(QLocale::English) : locale;
}

struct Item
{
    QCollatorSortKey key;
    os::FolderEntry entry;
};

}

SongSearch::SongSearch(const std::atomic<bool>& stop)
    : m_stop(stop)
    , m_order(SortLocale())
{
    m_order.setNumericMode(true);
    m_order.setCaseSensitivity(Qt::CaseInsensitive);
}

SongSearch::~SongSearch() = default;

void SongSearch::AddFault(const QString& thing, const char* reason)
{
    if (m_faults.size() < mostFaults)
        m_faults.append(LineOf(thing) + QStringLiteral(": ")
            + QCoreApplication::translate("SongFinder", reason));
}

void SongSearch::AddSong(const Song& song)
{
    if (m_songs.size() < Playlist::mostSongs) {
        m_songs.append(song);
    } else if (!m_isFull) {
        m_isFull = true;
        m_faults.append(
            QCoreApplication::translate("SongFinder", "More than %1 songs: the rest is left out")
                .arg(Playlist::mostSongs));
    }
}

void SongSearch::Add(const QUrl& url)
{
    const std::string path = PathOf(url);
    const QString name = path.empty() ? url.toDisplayString() : QString::fromStdString(path);
    if (path.empty()) {
        AddFault(name, QT_TRANSLATE_NOOP("SongFinder", "only files of this computer are played"));
    } else if (os::FolderExists(path)) {
        m_seen.clear();
        const qsizetype before = m_songs.size();
        AddFolder(path, 0);
        if (m_songs.size() == before && !m_isFull)
            AddFault(name, QT_TRANSLATE_NOOP("SongFinder", "there are no songs in this folder"));
    } else if (os::FileSize(path) < 0) {
        AddFault(name,
            IsThere(path) ? QT_TRANSLATE_NOOP("SongFinder", "is not a file that can be played")
                          : QT_TRANSLATE_NOOP("SongFinder", "there is no such file"));
    } else if (PlaylistFile::IsPlaylist(name)) {
        AddPlaylist(path);
    } else {
        Song song;
        song.url = UrlOf(path);
        AddSong(song);
    }
}

void SongSearch::AddPlaylist(const std::string& path)
{
    QList<Song> songs;
    QString error;
    if (!PlaylistFile::Read(QString::fromStdString(path), songs, error) && !m_stop)
        m_faults.append(error);
    for (Song& song : songs) {
        if (m_stop)
            return;
        const std::string songPath = PathOf(song.url);
        song.isMissing = !IsThere(songPath);
        if (song.isMissing || os::FileSize(songPath) >= 0)
            AddSong(song);
    }
}

// The songs of a folder stand before those of the folders in it.
void SongSearch::AddFolder(const std::string& path, int depth)
{
    const bool isNew = m_seen.insert(os::IdentifyFolder(path)).second;
    std::vector<os::FolderEntry> entries;
    bool isComplete = false;
    if (!isNew || m_stop || m_isFull)
        return;
    if (!os::ListFolder(path, mostEntries - m_entries, entries, isComplete)) {
        AddFault(QString::fromStdString(path),
            QT_TRANSLATE_NOOP("SongFinder", "the folder can't be read"));
        return;
    }
    m_entries += entries.size();
    std::vector<Item> items;
    for (os::FolderEntry& entry : entries) {
        if (entry.name.front() != '.' && (entry.isFolder || IsSongName(entry.name)))
            items.push_back(
                { m_order.sortKey(QString::fromStdString(entry.name)), std::move(entry) });
    }
    std::stable_sort(items.begin(), items.end(), [](const Item& a, const Item& b) {
        return a.entry.isFolder != b.entry.isFolder ? b.entry.isFolder : a.key < b.key;
    });
    const std::string folder = path.ends_with('/') ? path : path + '/';
    for (const Item& item : items) {
        if (m_stop || m_isFull)
            return;
        const std::string itemPath = folder + item.entry.name;
        if (item.entry.isFolder && depth < mostDepth) {
            AddFolder(itemPath, depth + 1);
        } else if (!item.entry.isFolder && os::FileSize(itemPath) >= 0) {
            Song song;
            song.url = UrlOf(itemPath);
            AddSong(song);
        }
    }
}

}
