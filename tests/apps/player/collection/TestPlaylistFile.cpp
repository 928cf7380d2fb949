#include "apps/player/collection/PlaylistFile.h"

#include "FileSizeLimit.h"
#include "TestFolder.h"

#include <doctest/doctest.h>
#include <sys/stat.h>

#include <ctime>

using namespace pxvis::player;

namespace {

struct PlaylistText
{
    explicit PlaylistText(const std::string& text, const std::string& name = "list.m3u8")
    {
        folder.Write(name, text);
        isRead = PlaylistFile::Read(QString::fromStdString(folder.Path(name)), songs, error);
    }

    // Paths, those below the folder from there on.
    std::string Paths() const
    {
        std::string paths;
        for (const Song& song : songs) {
            const std::string path = PathOf(song.url);
            const bool isBelow = path.starts_with(folder.Path(""));
            paths += (isBelow ? path.substr(folder.Path("").size()) : path) + "|";
        }
        return paths;
    }

    TestFolder folder;
    QList<Song> songs;
    QString error;
    bool isRead = false;
};

}

TEST_CASE("What is written is read again, whatever the songs' names are")
{
    const TestFolder folder;
    QList<Song> songs;
    for (const char* name :
        { "plain.mp3", "# one\\two.ogg", " a%20b?#c.flac", "new\nline.opus", "latin\xE4.wav",
            "\xC3\xA4/\xE6\x97\xA5.m4a", "http:/x.mp3", "back\\slash.mp3", "01 - A - B.mp3" }) {
        Song song;
        song.url = UrlOf(folder.Path(name));
        song.duration = 2000;
        songs.append(song);
    }
    songs[0].artist = "Artist";
    songs[0].title = "One - Two";
    songs[0].duration = 61'000;
    songs[1].title = "Title";
    songs[2].artist = "Artist";
    songs.append(Song());
    songs.last().url = UrlOf("/elsewhere/a.mp3");
    const QString path = QString::fromStdString(folder.Path("made/../lists/list.m3u8"));
    for (const bool relative : { false, true }) {
        QString error;
        REQUIRE(PlaylistFile::Write(path, songs, relative, error));
        QList<Song> again;
        REQUIRE(PlaylistFile::Read(path, again, error));
        CHECK(again == songs);
    }
    const QString beside = QString::fromStdString(folder.Path("list.m3u8"));
    QString error;
    REQUIRE(PlaylistFile::Write(beside, songs, true, error));
    QList<Song> again;
    REQUIRE(PlaylistFile::Read(beside, again, error));
    CHECK(again == songs);
    CHECK(folder.Read("list.m3u8")
              .starts_with(
                  "#EXTM3U\n#EXTINF:61,Artist - One - Two\nplain.mp3\n#EXTINF:2,Title\n./# one"));
    CHECK(folder.Read("list.m3u8").find("#EXTINF:2,01 - A - B\n01 - A") != std::string::npos);
    std::filesystem::rename(folder / "list.m3u8", folder / "lists/moved.m3u8");
    REQUIRE(
        PlaylistFile::Read(QString::fromStdString(folder.Path("lists/moved.m3u8")), again, error));
    CHECK(PathOf(again[0].url) == folder.Path("lists/plain.mp3"));
}

TEST_CASE("Lists of other programs are understood")
{
    const PlaylistText list(
        "\xEF\xBB\xBF#EXTM3U\r\n#EXTINF:12.5 kind=\"a\",  A -  B \r\n\r\nsub/a.mp3\r\n"
        "#EXTINF:-1,C\r\nx-s3.b://host/b.mp3\r\nfile:///x/%C3%A4.mp3\r\n"
        "file://host/c.mp3\r\nfile:///\r\nfolder/\r\n..\\up\\d.mp3\r\n/abs/./e.mp3");
    CHECK(list.isRead);
    CHECK(list.Paths()
        == "sub/a.mp3|/x/\xC3\xA4.mp3|"
            + std::filesystem::path(list.folder.Path("../up/d.mp3")).lexically_normal().string()
            + "|/abs/e.mp3|");
    CHECK(list.songs[0].duration == 12'500);
    CHECK(list.songs[0].artist == "A");
    CHECK(list.songs[0].title == "B");
    CHECK(list.songs[1].title.isEmpty());

    const PlaylistText old("#EXTINF:1,\xC4 - \x80\nS\xE4nger.mp3\n", "old.M3U");
    CHECK(old.Paths() == "S\xC3\xA4nger.mp3|");
    CHECK(old.songs[0].artist == QString::fromUtf8("\xC3\x84"));
    CHECK(old.songs[0].title == QString::fromUtf8("\xE2\x82\xAC"));
    CHECK(PlaylistFile::IsPlaylist("/a/B.M3U"));
    CHECK_FALSE(PlaylistFile::IsPlaylist("/a/m3u"));
}

TEST_CASE("Hostile lists are refused or cut, and soon")
{
    const std::clock_t start = std::clock();
    CHECK_FALSE(PlaylistText(std::string("a.mp3\n\0b.mp3\n", 13)).isRead);
    CHECK(PlaylistText(std::string(9000, 'x') + "\nb.mp3\n").Paths() == "b.mp3|");
    CHECK(PlaylistText("").songs.isEmpty());
    CHECK(PlaylistText("file:///%00a.mp3\nfile:///%zz\n\x01\n#\n").isRead);

    PlaylistText list("a.mp3\n");
    std::filesystem::resize_file(list.folder / "list.m3u8", 1LL << 30);
    REQUIRE(mkfifo(list.folder.Path("fifo.m3u8").c_str(), 0600) == 0);
    for (const char* name : { "list.m3u8", "fifo.m3u8", "", "none.m3u8" }) {
        const QString path = QString::fromStdString(list.folder.Path(name));
        CHECK_FALSE(PlaylistFile::Read(path, list.songs, list.error));
        CHECK(list.songs.isEmpty());
        CHECK(list.error.startsWith(path + ": "));
    }
    CHECK((std::clock() - start) / CLOCKS_PER_SEC < 15);
}

TEST_CASE("A list that can't be written whole stays as it was")
{
    PlaylistText list("#EXTM3U\na.mp3\nb.mp3\n");
    const QString path = QString::fromStdString(list.folder.Path("list.m3u8"));
    {
        const FileSizeLimit full(4);
        CHECK_FALSE(PlaylistFile::Write(path, list.songs, true, list.error));
    }
    CHECK(list.error.startsWith(path + ": "));
    CHECK(list.folder.Read("list.m3u8") == "#EXTM3U\na.mp3\nb.mp3\n");
    CHECK(list.folder.Count() == 1);
    CHECK_FALSE(PlaylistFile::Write("/dev/null", list.songs, true, list.error));
}
