#include "apps/player/collection/Playlist.h"

#include <doctest/doctest.h>

#include <QMimeData>
#include <QTextDocumentFragment>

#include <algorithm>
#include <ctime>
#include <memory>
#include <set>

using namespace pxvis::player;

namespace {

Song SongOf(const QString& name)
{
    Song song;
    song.url = QUrl::fromLocalFile("/music/" + name + ".ogg");
    return song;
}

QList<Song> SongsOf(const QString& names)
{
    QList<Song> songs;
    for (const QChar name : names)
        songs.append(SongOf(name));
    return songs;
}

// One letter a song, the current one a capital.
std::string Names(const Playlist& list)
{
    std::string names;
    for (int row = 0; row < list.Count(); ++row) {
        const QString name = TitleOf(list.At(row));
        names += (row == list.Current() ? name.toUpper() : name).toStdString();
    }
    return names;
}

std::string Played(Playlist& list, int count)
{
    std::string names;
    for (int i = 0; i < count; ++i) {
        const int next = list.Next(false);
        CHECK(list.Next(false) == next);
        if (next < 0)
            break;
        list.SetCurrent(next);
        names += TitleOf(list.At(next)).toStdString();
    }
    return names;
}

std::string Sorted(std::string names)
{
    std::sort(names.begin(), names.end());
    return names;
}

}

TEST_CASE("Songs come, go and move, and the current one stays so until it goes itself")
{
    Playlist list;
    int changes = 0;
    QObject::connect(&list, &Playlist::CurrentChanged, [&] { ++changes; });
    CHECK(list.Insert(SongsOf("abc")) == 3);
    list.SetCurrent(1);
    CHECK(list.Insert(SongsOf("de"), 0) == 2);
    CHECK(Names(list) == "deaBc");

    const QPersistentModelIndex watched = list.index(4, 0);
    const qint64 number = list.NumberAt(4);
    list.Move({ 4, 0, 0, 99, -1 }, 3);
    CHECK(Names(list) == "eadcB");
    CHECK(watched.row() == 3);
    CHECK(list.NumberAt(3) == number);
    CHECK(list.NumberAt(4) != number);
    list.Move({ 4 }, 0);
    list.Move({ 0 }, 1); // where it is
    CHECK(Names(list) == "Beadc");
    CHECK(changes == 1);

    list.Remove({ 0, 2, 4 });
    CHECK(Names(list) == "Ed");
    CHECK_FALSE(watched.isValid());
    CHECK(changes == 2);
    list.SetCurrent(1);
    list.Remove({ 1 });
    CHECK(list.Current() == -1);
    list.Clear();
    CHECK(list.rowCount() == 0);
    list.Update(SongOf("e"));
    CHECK(list.Next(true) == -1);
}

TEST_CASE("In the order of the list, repeating holds for ends and All for the user as well")
{
    Playlist list;
    list.Insert(SongsOf("abc"));
    CHECK(Played(list, 9) == "abc");
    CHECK(list.Previous() == 1);
    list.SetRepeat(RepeatMode::All);
    CHECK(Played(list, 4) == "abca");
    CHECK(list.Previous() == 2);
    list.SetRepeat(RepeatMode::One);
    CHECK(list.Next(false) == 0);
    CHECK(list.Next(true) == 1);
    CHECK(list.Previous() == -1);
}

TEST_CASE("In a random order each song has its turn in every round, and the way back is the same")
{
    const std::string all = "abcdefgh";
    Playlist list;
    list.Insert(SongsOf(QString::fromStdString(all)));
    list.SetCurrent(3);
    list.SetShuffled(true);
    CHECK(list.Previous() == -1);
    const std::string first = Played(list, 99);
    CHECK(Sorted(first + "d") == all);

    list.SetRepeat(RepeatMode::All);
    std::string later;
    for (int round = 0; round < 20; ++round) {
        const std::string names = Played(list, 8);
        CHECK(Sorted(names) == all);
        CHECK(names[0] != (later.empty() ? first : later).back());
        later += names;
    }
    std::string way = "d" + first + later;
    for (size_t i = way.size() - 1; i > 0; --i) {
        const int row = list.Previous();
        REQUIRE(row >= 0);
        list.SetCurrent(row);
        CHECK(TitleOf(list.At(row)).toStdString() == std::string(1, way[i - 1]));
    }
    CHECK(list.Previous() == -1);
    CHECK(Played(list, 30) == way.substr(1, 30));
}

TEST_CASE("What is added, taken away or moved leaves the rest of a random order as it is")
{
    for (int attempt = 0; attempt < 50; ++attempt) {
        Playlist list;
        list.Insert(SongsOf("abcdef"));
        list.SetShuffled(true);
        const std::string before = Played(list, 2);
        list.Move({ 0, 3 }, 6);
        list.Insert(SongsOf("xy"), 2);
        const int next = list.Next(true);
        const int previous = list.Previous();
        list.SetCurrent(next == 0 ? 1 : 0); // out of turn
        const std::string chosen = TitleOf(list.At(list.Current())).toStdString();
        if (list.Current() != previous)
            CHECK(list.Next(true) == next);
        const std::string after = Played(list, 99);
        std::string played = before + chosen + after;
        std::set<char> once(played.begin(), played.end());
        CHECK(std::string(once.begin(), once.end()) == "abcdefxy");
        list.Remove({ list.Current() });
        CHECK(list.Current() == -1);
        list.SetRepeat(RepeatMode::All);
        list.SetCurrent(list.Next(true));
        list.Remove({ list.Current() });
        CHECK(list.Current() >= 0);
        CHECK(Played(list, 5).size() == 5);
    }
}

TEST_CASE("Views get texts, and missing songs with a reason")
{
    Playlist list;
    Song song = SongOf("a");
    list.Insert({ song, SongOf("b"), song });
    list.SetCurrent(0);
    const auto text = [&](int row, int column, int role = Qt::DisplayRole) {
        return list.data(list.index(row, column), role).toString().toStdString();
    };
    song.title = "Title";
    song.artist = "Artist";
    song.duration = 3'725'999;
    song.isMissing = true;
    int shown = 0;
    QObject::connect(&list, &Playlist::dataChanged, [&] { ++shown; });
    list.Update(song);
    list.Update(song);
    CHECK(shown == 2);
    CHECK(text(2, Playlist::ColumnDuration) == "1:02:05");
    CHECK(text(0, 0, Qt::AccessibleTextRole)
        == "Current song, Title, Artist, 1:02:05, the file is missing");
    const auto tip = [&](int column) {
        return QTextDocumentFragment::fromHtml(
            list.data(list.index(0, column), Qt::ToolTipRole).toString())
            .toPlainText();
    };
    CHECK(tip(Playlist::ColumnTitle) == "There is no file /music/a.ogg");
    song.isMissing = false;
    song.title = "R&B <img src='/a.png'> &lt;";
    list.Update(song);
    CHECK(tip(Playlist::ColumnTitle) == song.title);
    list.SetFault(song.url, "No decoder");
    CHECK_FALSE(list.IsPlayable(2));
    CHECK(list.IsPlayable(1));
    CHECK(tip(Playlist::ColumnTitle) == song.title + " can't be played: No decoder");
    list.Update(song); // what is read of it tells nothing of that
    CHECK_FALSE(list.IsPlayable(2));
    list.SetFault(song.url, {});
    CHECK(list.IsPlayable(2));
    CHECK(DurationText(59'999) == "0:59");
}

TEST_CASE("Rows are dropped where they are by then, files elsewhere become the player's to find")
{
    Playlist list;
    Playlist other;
    list.Insert(SongsOf("abcd"));
    const std::unique_ptr<QMimeData> mime(
        list.mimeData({ list.index(1, 0), list.index(3, 0), list.index(1, 1) }));
    list.Insert(SongsOf("x"), 0);
    CHECK(list.dropMimeData(mime.get(), Qt::CopyAction, 0, 0, {}));
    CHECK(Names(list) == "bdxac");

    QList<QUrl> dropped;
    int droppedAt = 0;
    QObject::connect(&other, &Playlist::UrlsDropped, [&](const QList<QUrl>& urls, int row) {
        dropped = urls;
        droppedAt = row;
    });
    CHECK(other.dropMimeData(mime.get(), Qt::CopyAction, -1, -1, {}));
    CHECK(dropped == QList<QUrl> { SongOf("b").url, SongOf("d").url });
    CHECK(droppedAt == -1);
    CHECK_FALSE(list.dropMimeData(mime.get(), Qt::MoveAction, 0, 0, {}));
    QMimeData junk;
    junk.setData(list.mimeTypes().first(), QByteArray("\x7F\xFF\xFF\xFF junk"));
    CHECK_FALSE(list.dropMimeData(&junk, Qt::CopyAction, 0, 0, {}));
}

TEST_CASE("A hundred thousand songs are handled at once")
{
    QList<Song> songs;
    for (int i = 0; i < Playlist::mostSongs + 5; ++i)
        songs.append(SongOf(QString::number(i)));
    const std::clock_t start = std::clock();
    Playlist list;
    list.SetShuffled(true);
    CHECK(list.Insert(songs) == Playlist::mostSongs);
    CHECK(list.Insert(songs) == 0);
    QList<int> odd;
    for (int row = 1; row < list.Count(); row += 2)
        odd.append(row);
    list.Move(odd, 0);
    for (Song& song : songs) {
        song.isRead = true;
        list.Update(song);
    }
    list.Remove(odd);
    CHECK(list.Count() == Playlist::mostSongs / 2);
    CHECK(list.At(7).isRead);
    for (int i = 0; i < 1000; ++i)
        list.SetCurrent(list.Next(true));
    CHECK((std::clock() - start) / CLOCKS_PER_SEC < 15); // a hundredth of that without sanitizers
}
