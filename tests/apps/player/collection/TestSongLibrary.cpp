#include "apps/player/collection/SongLibrary.h"

#include "FileSizeLimit.h"
#include "TestFolder.h"
#include "apps/player/collection/SqliteDatabase.h"

#include <doctest/doctest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace pxvis::player;

namespace {

const QUrl song("file:///music/%C3%A4%20%23?.ogg");

QUrl SongAt(int number)
{
    return QUrl(QStringLiteral("file:///music/of/some/band/song%1.ogg").arg(number));
}

struct LibraryFolder
{
    SongLibrary Open() const { return SongLibrary(path); }

    // A library with that many rated songs, in whole pages.
    std::string Fill(int songs) const
    {
        {
            SongLibrary library(path);
        }
        SqliteDatabase database;
        REQUIRE(database.Open(path.toStdString(), SQLITE_OPEN_READWRITE) == SQLITE_OK);
        database.Run("BEGIN");
        SqliteStatement insert;
        insert.Prepare(database, "INSERT INTO songs(url, rating) VALUES(?1, 3)");
        for (int i = 0; i < songs; ++i) {
            insert.Bind(1, SongAt(i).toEncoded().toStdString());
            CHECK(insert.Step() == SQLITE_DONE);
            insert.Reset();
        }
        CHECK(
            database.Run("INSERT INTO scripts VALUES('Folder\\Script', -1); COMMIT") == SQLITE_OK);
        return folder.Read("library.sqlite");
    }

    int Run(const char* statements) const
    {
        SqliteDatabase database;
        database.Open(path.toStdString(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        return database.Run(statements);
    }

    TestFolder folder;
    QString path = QString::fromStdString(folder.Path("library.sqlite"));
};

int CountRated(const SongLibrary& library, int songs)
{
    int count = 0;
    for (int i = 0; i < songs; ++i)
        count += library.Rating(SongAt(i)) == 3;
    return count;
}

}

TEST_CASE("What is noted of songs and scripts is there the next time")
{
    const LibraryFolder files;
    {
        SongLibrary library = files.Open();
        CHECK(library.Warning().isEmpty());
        CHECK(library.PlayCount(song) == 0);
        library.NotePlayed(song);
        library.NotePlayed(song);
        library.SetRating(song, 9);
        library.SetRating(SongAt(1), -1);
        library.SetScriptRating("Folder\\\xC3\xA4'", SongLibrary::never);
        library.SetScriptRating("Other", 4);
        for (int i = 0; i < 25; ++i)
            library.NoteOpened(SongAt(i));
        library.NoteOpened(SongAt(20));
    }
    SongLibrary library = files.Open();
    CHECK(library.PlayCount(song) == 2);
    CHECK(library.LastPlayed(song).secsTo(QDateTime::currentDateTime()) < 60);
    CHECK(library.Rating(song) == 5);
    CHECK(library.Rating(SongAt(1)) == 0);
    CHECK(library.ScriptRating("Folder\\\xC3\xA4'") == SongLibrary::never);
    CHECK(library.ScriptRating("Other") == 4);
    const QList<QUrl> recent = library.Recent();
    REQUIRE(recent.size() == 20);
    CHECK(recent.first() == SongAt(20));
    CHECK(recent[1] == SongAt(24));
    CHECK(recent.last() == SongAt(5));
    library.ClearRecent();
    CHECK(library.Recent().isEmpty());
    CHECK(files.folder.Names() == "library.sqlite ");
}

TEST_CASE("Players that write at the same time lose nothing, from the making of the file on")
{
    const LibraryFolder files;
    constexpr int players = 4;
    constexpr int plays = 25;
    for (int player = 0; player < players; ++player) {
        if (fork() == 0) {
            {
                SongLibrary library = files.Open();
                for (int i = 0; i < plays; ++i)
                    library.NotePlayed(song);
            }
            _exit(0);
        }
    }
    while (wait(nullptr) > 0) { }
    CHECK(files.Open().PlayCount(song) == players * plays);
}

TEST_CASE("What another player holds up for long is written once it lets go")
{
    const LibraryFolder files;
    {
        SongLibrary library = files.Open();
        SqliteDatabase other;
        REQUIRE(other.Open(files.path.toStdString(), SQLITE_OPEN_READWRITE) == SQLITE_OK);
        REQUIRE(other.Run("BEGIN IMMEDIATE") == SQLITE_OK);
        library.NotePlayed(song);
        library.NotePlayed(song);
        CHECK(library.PlayCount(song) == 0);
        other.Close();
    }
    CHECK(files.Open().PlayCount(song) == 2);
}

TEST_CASE("A damaged library is kept aside, and what can be read of it is used")
{
    constexpr int songs = 1500;
    const auto check = [](const LibraryFolder& files, const std::string& bytes, int least) {
        files.folder.Write("library.sqlite", bytes);
        {
            SongLibrary library = files.Open();
            CHECK(library.Warning().contains("library.sqlite.damaged-1"));
            CHECK(CountRated(library, songs) >= least);
            library.SetRating(song, 2);
        }
        CHECK(files.folder.Read("library.sqlite.damaged-1") == bytes);
        SongLibrary library = files.Open();
        CHECK(library.Warning().isEmpty());
        CHECK(library.Rating(song) == 2);
        CHECK(CountRated(library, songs) >= least);
    };
    SUBCASE("No database at all")
    {
        const LibraryFolder files;
        files.folder.Write("library.sqlite-journal", "stale");
        check(files, std::string(5000, 'x'), 0);
        files.folder.Write(
            "library.sqlite", "again, but long enough to be something" + std::string(999, ' '));
        CHECK(files.Open().Warning().contains("damaged-2"));
    }
    SUBCASE("The end is missing")
    {
        const LibraryFolder files;
        const std::string bytes = files.Fill(songs);
        check(files, bytes.substr(0, bytes.size() / 2), songs / 4);
    }
    SUBCASE("Pages are overwritten")
    {
        const LibraryFolder files;
        std::string bytes = files.Fill(songs);
        for (const double part : { 0.3, 0.6 })
            bytes.replace(size_t(double(bytes.size()) * part) / 4096 * 4096, 4096, 4096, 'x');
        check(files, bytes, songs * 8 / 10);
        CHECK(files.Open().ScriptRating("Folder\\Script") == SongLibrary::never);
    }
    SUBCASE("A stranger's tables are others than ours")
    {
        const LibraryFolder files;
        files.Fill(10);
        REQUIRE(files.Run("CREATE TRIGGER t AFTER INSERT ON songs BEGIN DELETE FROM scripts; END")
            == SQLITE_OK);
        check(files, files.folder.Read("library.sqlite"), 10);
    }
}

TEST_CASE("A file that isn't this program's to change stays as it is")
{
    const LibraryFolder files;
    for (const char* statements : { "CREATE TABLE t(x); INSERT INTO t VALUES(1)",
             "CREATE TABLE u(x); PRAGMA user_version = 2", "PRAGMA user_version = -1" }) {
        REQUIRE(files.Run(statements) == SQLITE_OK);
        const std::string bytes = files.folder.Read("library.sqlite");
        SongLibrary library = files.Open();
        CHECK(library.Warning().contains("library.sqlite"));
        library.NotePlayed(song);
        library.NoteOpened(song);
        CHECK(library.PlayCount(song) == 1);
        CHECK(library.Recent() == QList<QUrl> { song });
        CHECK(files.folder.Read("library.sqlite") == bytes);
        CHECK(files.folder.Names() == "library.sqlite ");
    }
}

TEST_CASE("Where nothing can be written all is remembered until the end")
{
    LibraryFolder files;
    REQUIRE(mkfifo(files.folder.Path("fifo").c_str(), 0600) == 0);
    for (const char* path : { "/dev/null/library.sqlite", "/dev/null", "", "/" }) {
        SongLibrary library(path);
        CHECK_FALSE(library.Warning().isEmpty());
        library.SetRating(song, 3);
        CHECK(library.Rating(song) == 3);
    }
    CHECK_FALSE(SongLibrary(files.folder.Path("fifo").c_str()).Warning().isEmpty());

    files.Fill(10);
    SongLibrary running = files.Open();
    {
        const FileSizeLimit full(4);
        running.SetRating(song, 1);
        CHECK_FALSE(running.Warning().isEmpty());
        CHECK(running.Rating(song) == 1);
        CHECK(CountRated(running, 10) == 10);
        SongLibrary library = files.Open();
        CHECK_FALSE(library.Warning().isEmpty());
        library.NotePlayed(SongAt(1));
        CHECK(CountRated(library, 10) == 10);
        CHECK(SongLibrary(files.folder.Path("new.sqlite").c_str()).Rating(song) == 0);
    }
    SongLibrary library = files.Open();
    CHECK(library.Warning().isEmpty());
    CHECK(library.Rating(song) == 0);
    CHECK(CountRated(library, 10) == 10);
}
