#include "TestFolder.h"
#include "apps/player/sound/HeardSound.h"
#include "apps/player/sound/SoundTesting.h"

#include <algorithm>
#include <cstring>

using namespace pxvis;
using namespace pxvis::player;

TEST_CASE("Songs follow each other without a gap, each told with its own tags when it is heard")
{
    const TestFolder folder;
    const std::vector<float> whole = Tone(3);
    // Not at a whole number of any decoder's blocks.
    const auto cut = whole.begin() + 2 * 61234;
    const std::string sink = "audioconvert ! audio/x-raw,format=S16LE,rate=44100,channels=2 "
                             "! filesink sync=true location="
        + folder.Path("heard");
    Listened listened(sink.c_str());
    GstTagList* tags = gst_tag_list_new(GST_TAG_TITLE, "The second one", nullptr);
    const QUrl first = WriteSong(folder.Path("a.flac"), { whole.begin(), cut }, "flacenc");
    const QUrl second = WriteSong(folder.Path("b.flac"), { cut, whole.end() }, "flacenc", tags);
    gst_tag_list_unref(tags);

    int changes = 0;
    Playback& playback = listened.playback;
    playback.Open(first);
    playback.SetNext(second);
    CHECK(playback.State() == PlayState::Playing);
    const auto look = [&] {
        host::AudioRecord record;
        const bool isAwake = playback.Heard().Take(record);
        changes += record.change;
        return isAwake;
    };
    CHECK(WaitFor([&] { return look() && playback.Position() > 500; }));
    CHECK(playback.Duration() == 1388);
    CHECK(listened.info.tags.title == "a");
    CHECK(listened.info.sampleRate == 44100);
    CHECK(WaitFor([&] { return look() && listened.events.size() >= 2; }));
    CHECK(playback.Position() < 1000); // of the second one
    CHECK(WaitFor([&] { return look() && listened.info.tags.title == "The second one"; }));
    CHECK(WaitFor([&] { return !look(); }));
    CHECK(listened.events == QStringList { "song a.flac", "song b.flac", "ended" });
    CHECK(changes == 2);
    CHECK(playback.State() == PlayState::Stopped);

    const std::string heard = folder.Read("heard");
    REQUIRE(heard.size() == whole.size() * 2);
    int worst = 0;
    for (size_t i = 0; i < whole.size(); ++i) {
        int16_t sample = 0;
        std::memcpy(&sample, &heard[2 * i], 2);
        worst = std::max(worst, std::abs(sample - static_cast<int>(std::lround(whole[i] * 32767))));
    }
    CHECK(worst <= 2);
}

TEST_CASE(
    "It opens at a place, seeks, pauses and goes on there, also when the next one is on its way")
{
    const TestFolder folder;
    Listened listened;
    Playback& playback = listened.playback;
    const QUrl song = WriteSong(folder.Path("a.wav"), Tone(60));
    const QUrl next = WriteSong(folder.Path("b.wav"), Tone(60));
    playback.Open(song, 20000, PlayState::Paused);
    CHECK(playback.Position() == 20000);
    CHECK(WaitFor([&] { return playback.Duration() == 60000 && playback.IsSeekable(); }));
    RunFor(300);
    CHECK(playback.Position() == 20000);
    host::AudioRecord record;
    CHECK_FALSE(playback.Heard().Take(record));
    playback.Play();
    CHECK(listened.WaitForPosition(20200));
    for (int i = 0; i < 50; ++i) // a slider that is dragged
        playback.Seek(30000 + 100 * i);
    CHECK(playback.Position() == 34900);
    CHECK(WaitFor([&] { return listened.events.contains("seeked"); }));
    CHECK(listened.WaitForPosition(35100));
    CHECK(playback.Position() < 36500);
    CHECK(playback.Heard().Take(record));
    CHECK(*std::max_element(record.block.waveform[0], record.block.waveform[0] + 1024) > 60);

    playback.SetNext(next);
    playback.Seek(59000);
    CHECK(listened.WaitForPosition(59300));
    playback.Seek(10000);
    CHECK(listened.WaitForPosition(10200));
    CHECK(playback.Song() == song);
    playback.Seek(59900);
    CHECK(WaitFor([&] { return playback.Song() == next; }));
    playback.Pause();
    const qint64 position = playback.Position();
    RunFor(1000); // a busy machine may take a while to stop
    CHECK(playback.Position() - position < 500);
    playback.Stop();
    CHECK(playback.Position() == 0);
    playback.Play();
    CHECK(WaitFor([&] { return listened.events.count("song b.wav") == 2; }));
    playback.Seek(1 << 30);
    CHECK(listened.WaitForStop());
    CHECK(listened.events.last() == "ended");
}

TEST_CASE("What can't be played is told in one line, also when it should follow another song")
{
    const TestFolder folder;
    const QUrl song = WriteSong(folder.Path("a.wav"), Tone(1.5));
    folder.Write("empty.mp3", "");
    folder.Write("text.mp3", "These are words and not music, and there are many of them.");
    folder.Write("list.m3u8", "#EXTM3U\n#EXTINF:10,\nhttp://127.0.0.1:9/a.ts\n");
    std::string damaged = folder.Read("a.wav");
    folder.Write("damaged.flac", "fLaC" + damaged.substr(0, 5000));
    const auto url = [&](const char* name) {
        return QUrl::fromLocalFile(QString::fromStdString(folder.Path(name)));
    };
    for (const QUrl& bad : { url("missing.wav"), url("empty.mp3"), url("text.mp3"),
             url("list.m3u8"), url("damaged.flac"), url("."), QUrl("http://127.0.0.1:9/a.mp3"),
             QUrl::fromLocalFile("/dev/zero"), QUrl() }) {
        CAPTURE(bad.toString().toStdString());
        Listened listened;
        listened.playback.Open(bad);
        CHECK(listened.WaitForStop());
        CHECK(listened.events == QStringList("failed " + bad.fileName()));
        CHECK_FALSE(listened.reason.isEmpty());
        CHECK_FALSE(listened.reason.contains('\n'));
        listened.playback.Open(song);
        CHECK(WaitFor([&] { return listened.events.contains("song a.wav"); }));
    }
    for (const std::string next : { "missing.wav", "text.mp3", "damaged.flac" }) {
        CAPTURE(next);
        Listened listened;
        listened.playback.Open(song);
        listened.playback.SetNext(url(next.c_str()));
        CHECK(listened.WaitForPosition(1200)); // what was decoded before is played
        CHECK(listened.WaitForStop());
        CHECK(listened.events
            == QStringList { "song a.wav", QString::fromStdString("failed " + next) });
    }
}

TEST_CASE(
    "What has no decoder here is told by the format's name, also when it follows another song")
{
    const TestFolder folder;
    const QUrl song = WriteSong(folder.Path("a.wav"), Tone(1.2));
    const auto rename = [&](const char* file, std::string name, const std::string& to) {
        std::string bytes = folder.Read(file);
        bytes.replace(bytes.find(name), to.size(), to);
        folder.Write(file, bytes);
    };
    const QUrl matroska = WriteSong(folder.Path("b.mka"), Tone(1), "vorbisenc ! matroskamux");
    rename("b.mka", "A_VORBIS", "A_STRANG");
    const QUrl mp4 = WriteSong(folder.Path("c.mp4"), Tone(1), "lamemp3enc ! mp4mux");
    rename("c.mp4", "mp4a", "xyza");
    folder.Write("d.wav", folder.Read("a.wav").replace(20, 2, std::string("\x75\0", 2)));
    const QUrl wave = QUrl::fromLocalFile(QString::fromStdString(folder.Path("d.wav")));
    for (const auto& [url, name] : { std::pair { matroska, "A_STRANG" }, std::pair { mp4, "xyza" },
             std::pair { wave, "Voxware" } }) {
        CAPTURE(name);
        for (const bool follows : { false, true }) {
            Listened listened;
            listened.playback.Open(follows ? song : url);
            if (follows)
                listened.playback.SetNext(url);
            CHECK(listened.WaitForStop());
            CHECK(listened.events.last() == "failed " + url.fileName());
            CHECK(listened.reason.contains(name));
        }
    }
}

TEST_CASE("Songs that are cut off or damaged in the middle come to an end")
{
    const TestFolder folder;
    const std::vector<float> samples = Tone(2);
    for (const std::string encoder : { "wavenc", "flacenc", "vorbisenc ! oggmux",
             "lamemp3enc ! xingmux ! id3v2mux", "opusenc ! oggmux" }) {
        WriteSong(folder.Path("whole"), samples, encoder);
        const std::string whole = folder.Read("whole");
        std::string damaged = whole;
        for (size_t i = whole.size() / 2; i < whole.size() * 3 / 4; ++i)
            damaged[i] = static_cast<char>(i * 7919 >> 5);
        folder.Write("damaged", damaged);
        folder.Write("cut", whole.substr(0, whole.size() / 2));
        for (const std::string name : { "damaged", "cut" }) {
            CAPTURE(encoder);
            CAPTURE(name);
            Listened listened;

            listened.playback.Open(QUrl::fromLocalFile(QString::fromStdString(folder.Path(name))));
            CHECK(listened.WaitForStop());
            CAPTURE(listened.events.join(", ").toStdString());
            CAPTURE(listened.reason.toStdString());
            const QString end = QString::fromStdString("failed " + name);
            CHECK((listened.events.last() == "ended" || listened.events.last() == end));
        }
    }
}

TEST_CASE(
    "Too late a change of what follows is made good, and one that follows itself is told again")
{
    const TestFolder folder;
    Listened listened;
    const QUrl song = WriteSong(folder.Path("a.wav"), Tone(1.2));
    const QUrl other = WriteSong(folder.Path("b.wav"), Tone(1.2));
    listened.playback.Open(song);
    listened.playback.SetNext(other);
    CHECK(listened.WaitForPosition(900));
    listened.playback.SetNext(song);
    CHECK(WaitFor([&] { return listened.events.count("song a.wav") == 2; }));
    listened.playback.SetNext(song);
    CHECK(listened.WaitForPosition(900));
    CHECK(WaitFor([&] { return listened.events.count("song a.wav") == 3; }));
    CHECK(listened.WaitForPosition(300));
    listened.playback.SetNext(other);
    CHECK(listened.WaitForPosition(900));
    listened.playback.SetNext({});
    CHECK(listened.WaitForStop());
    CHECK(listened.events.last() == "ended");
    CHECK_FALSE(listened.events.contains("song b.wav"));
}

TEST_CASE("Without a sound server and a card it plays silently and says so once")
{
    setenv("PULSE_SERVER", "unix:/nowhere", 1);
    const TestFolder folder;
    Listened listened("");
    listened.playback.Open(WriteSong(folder.Path("a.wav"), Tone(4)));
    CHECK(listened.WaitForStop());
    CHECK(listened.events == QStringList { "song a.wav", "ended" });
    CHECK(listened.lost.size() == 1);
    unsetenv("PULSE_SERVER");
}
