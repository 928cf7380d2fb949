#include "apps/player/collection/SongFinder.h"

#include "TestFolder.h"
#include "host/GStreamer.h"
#include "host/SongFile.h"

#include <doctest/doctest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>

#include <algorithm>
#include <functional>
#include <sys/stat.h>

using namespace pxvis::player;

namespace {

void ProcessEventsUntil(const std::function<bool()>& isDone, int milliseconds = 60'000)
{
    QElapsedTimer timer;
    timer.start();
    while (!isDone() && timer.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
}

// With an event loop, and what came of it.
struct Findings
{
    Findings()
    {
        QObject::connect(&finder, &SongFinder::Found,
            [this](int foundNumber, const QList<Song>& foundSongs, const QStringList& foundFaults) {
                number = foundNumber;
                songs = foundSongs;
                faults = foundFaults;
            });
        QObject::connect(
            &finder, &SongFinder::Read, [this](const Song& song) { read.append(song); });
    }

    // The paths without the folder's.
    std::string Find(const QStringList& names)
    {
        QList<QUrl> urls;
        for (const QString& name : names)
            urls.append(name.contains(':') ? QUrl(name) : UrlOf(folder.Path(name.toStdString())));
        const int asked = finder.Find(urls);
        ProcessEventsUntil([&] { return number == asked; });
        REQUIRE(number == asked);
        std::string paths;
        for (const Song& song : songs) {
            CHECK_FALSE(song.isRead);
            paths
                += PathOf(song.url).substr(folder.Path("").size()) + (song.isMissing ? "!|" : "|");
        }
        return paths;
    }

    int argumentCount = 0;
    QCoreApplication application { argumentCount, nullptr };
    TestFolder folder;
    SongFinder finder;
    int number = 0;
    QList<Song> songs;
    QStringList faults;
    QList<Song> read;
};

Song SongAt(const TestFolder& folder, const std::string& name)
{
    Song song;
    song.url = UrlOf(folder.Path(name));
    return song;
}

}

TEST_CASE("Folders give their songs in the order that people expect, playlists what they name")
{
    Findings found;
    namespace fs = std::filesystem;
    fs::create_directories(found.folder / "a/Disc 10");
    fs::create_directories(found.folder / "a/disc 2/.hidden");
    for (const char* name : { "a/10 b.mp3", "a/2 b.OGG", "a/1.latin\xE4.flac", "a/cover.jpg",
             "a/._2 b.ogg", "a/Disc 10/x.mp3", "a/disc 2/y.opus", "a/disc 2/.hidden/z.mp3",
             "a/disc 2/list.m3u8", "odd.name" })
        found.folder.Write(name, "x");
    fs::create_directory_symlink("..", found.folder / "a/disc 2/loop");
    REQUIRE(mkfifo(found.folder.Path("a/fifo.mp3").c_str(), 0600) == 0);
    CHECK(found.Find({ "a" })
        == "a/1.latin\xE4.flac|a/2 b.OGG|a/10 b.mp3|a/disc 2/y.opus|a/Disc 10/x.mp3|");
    CHECK(found.faults.isEmpty());

    found.folder.Write("list.m3u8", "odd.name\ngone.mp3\na\na/fifo.mp3\n");
    CHECK(found.Find({ "list.m3u8", "odd.name", "a/cover.jpg" })
        == "odd.name|gone.mp3!|odd.name|a/cover.jpg|");
    CHECK(found.Find({ "none.mp3", "http://host/a.mp3", "a/fifo.mp3", "a/disc 2/.hidden" })
        == "a/disc 2/.hidden/z.mp3|");
    CHECK(found.faults.size() == 3);
    CHECK(found.faults[0].endsWith("none.mp3: there is no such file"));
    CHECK(found.faults[1] == "http://host/a.mp3: only files of this computer are played");
}

TEST_CASE("Tags are read without waiting for anything, the latest wish first")
{
    Findings found;
    std::string error;
    REQUIRE(pxvis::host::InitializeGStreamer(error));
    const pxvis::host::GstHolder<GstTagList> tags(gst_tag_list_new(GST_TAG_TITLE, "Two\nlines",
        GST_TAG_ARTIST, "\xC3\x84rtist", GST_TAG_ALBUM, "Album", nullptr));
    const std::string name = "one \xC3\xA4 #?%.flac";
    const std::vector<float> silence(2 * 44100 * 2);
    REQUIRE_MESSAGE(
        WriteSongFile(found.folder.Path(name), silence, "flacenc", tags.get(), error), error);
    found.folder.Write("text.mp3", std::string(5000, 'x'));
    found.folder.Write("cut.flac", found.folder.Read(name).substr(0, 60));
    REQUIRE(mkfifo(found.folder.Path("fifo.mp3").c_str(), 0600) == 0);

    Song known = SongAt(found.folder, "text.mp3");
    known.title = "From a list";
    found.finder.ReadTags({ SongAt(found.folder, "gone.mp3"), SongAt(found.folder, "fifo.mp3"),
        SongAt(found.folder, "cut.flac"), known });
    found.finder.ReadTags({ SongAt(found.folder, name) });
    ProcessEventsUntil([&] { return found.read.size() == 5; });
    REQUIRE(found.read.size() == 5);
    const auto at = [&](const std::string& file) {
        const QUrl url = SongAt(found.folder, file).url;
        return std::find_if(found.read.begin(), found.read.end(), [&](const Song& song) {
            return song.url == url;
        }) - found.read.begin();
    };
    CHECK(at(name) < at("text.mp3")); // some of the first may have had their turn already
    Song expected = SongAt(found.folder, name);
    expected.title = "Two lines";
    expected.artist = QString::fromUtf8("\xC3\x84rtist");
    expected.album = "Album";
    expected.duration = 2000;
    expected.isRead = true;
    CHECK(found.read[at(name)] == expected);
    CHECK(found.read[at("gone.mp3")].isMissing);
    CHECK(found.read[at("fifo.mp3")].isMissing);
    CHECK(TitleOf(found.read[at("cut.flac")]) == "cut");
    CHECK(found.read[at("text.mp3")].title == "From a list");
    for (const Song& song : found.read)
        CHECK(song.isRead);
}

TEST_CASE("What is cancelled never comes, and an end in the middle is no hurdle")
{
    Findings found;
    found.folder.Write("text.mp3", std::string(5000, 'x'));
    const QList<Song> songs(1000, SongAt(found.folder, "text.mp3"));
    found.finder.ReadTags(songs);
    ProcessEventsUntil([&] { return !found.read.isEmpty(); });
    found.finder.Find({ songs[0].url });
    found.finder.Cancel();
    const qsizetype before = found.read.size();
    ProcessEventsUntil([&] { return found.read.size() > before || found.number > 0; }, 200);
    CHECK(found.read.size() == before);
    CHECK(found.number == 0);
    CHECK(found.Find({ "text.mp3" }) == "text.mp3|");

    QElapsedTimer timer;
    timer.start();
    {
        SongFinder other;
        other.ReadTags(songs);
    }
    CHECK(timer.elapsed() < 10'000);
}
