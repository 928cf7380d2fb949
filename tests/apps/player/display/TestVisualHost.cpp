#include "SlotOf.h"
#include "TestFolder.h"
#include "TestVariable.h"
#include "apps/player/display/FakeSound.h"
#include "apps/player/display/VisualHost.h"

#include <pxvis/IVisAudioData.h>
#include <pxvis/SysString.h>

#include <doctest/doctest.h>

#include <QThread>

#include <cstring>
#include <memory>
#include <string>

using namespace pxvis::player;

namespace {

std::u16string Taken(char16_t* text)
{
    const std::unique_ptr<char16_t, decltype(&SysFreeString)> holder(text, SysFreeString);
    return text ? text : u"(null)";
}

// A host with a sound, and what a visualization has of it.
struct Line
{
    Line()
    {
        host.SetSound(&sound);
        sound.record.level = 77;
        sound.record.beat = 1;
        sound.record.block.waveform[0][0] = -5;
        sound.record.block.waveform[1][1023] = 6;
        sound.record.block.spectrum[0][0] = 200;
        sound.record.block.spectrum[1][511] = 201;
        track.path = "/music/Tide.flac";
        track.info.tags.title = "Tide";
        data = NewData();
    }

    std::unique_ptr<IVisAudioData> NewData()
    {
        const std::u16string text = Ask(u"Legacy Data Object");
        const std::string digits(text.begin(), text.end());
        return std::unique_ptr<IVisAudioData>(
            reinterpret_cast<IVisAudioData*>(std::stoull(digits, nullptr, 16)));
    }

    std::u16string Ask(const char16_t* name) { return Taken(connection->GetProperty(name)); }

    std::u16string Field(int32_t which) { return Taken(data->GetTrackField(which)); }

    bool TakesChange() // of the picture, with the next frame
    {
        return data->Refresh() == 0 && data->GetValue(VisAudioValueChange) != 0;
    }

    TestFolder home;
    TestVariable cache { "XDG_CACHE_HOME", home.Path("cache").c_str() };
    FakeSound sound;
    VisualHost host;
    HostTrack track;
    std::unique_ptr<IOQHostConnection> connection { host.Connect(nullptr) };
    std::unique_ptr<IVisAudioData> data;
};

}

TEST_CASE("A frame is what is heard, the same until the next, and none comes while it rests")
{
    CHECK(SlotOf(&IOQHostConnection::Refresh) == 2);
    CHECK(SlotOf(&IOQHostConnection::GetCoverImage) == 6);
    CHECK(SlotOf(&IVisAudioData::Refresh) == 2);
    CHECK(SlotOf(&IVisAudioData::ExpandText) == 8);
    Line line;
    CHECK(line.data->Refresh() == 0);
    line.sound.record.level = 150;
    line.sound.record.block = {};
    CHECK(line.data->GetValue(VisAudioValueLevel) == 77);
    CHECK(line.data->GetValue(VisAudioValueBeat) == 1);
    CHECK(line.data->GetValue(99) == 0);
    CHECK(line.data->GetData()->waveform[1][1023] == 6);
    CHECK(line.Ask(u"Impact") == u"77");
    CHECK(line.host.Level() == 77);
    CHECK(line.host.TakeBeat());
    CHECK_FALSE(line.host.TakeBeat());

    line.sound.plays = false;
    CHECK(line.data->Refresh() != 0);
    CHECK(line.Ask(u"IMPACT") == u"0");
    line.host.DrawAwhile(); // the moment lasts, but nothing beats
    CHECK(line.data->Refresh() == 0);
    CHECK(line.data->GetValue(VisAudioValueLevel) == 0);
    CHECK(line.data->GetValue(VisAudioValueBeat) == 0);
    CHECK(line.data->GetData()->waveform[1][1023] == 6);
    line.sound.plays = true;
    line.host.SetResting(true);
    CHECK(line.data->Refresh() != 0);
    line.host.SetResting(false);
    CHECK(line.data->Refresh() == 0);
    CHECK(line.data->GetValue(VisAudioValueLevel) == 150);
    line.host.SetSound(nullptr);
    QThread::msleep(1100);
    CHECK(line.data->Refresh() != 0);
}

TEST_CASE("Scenes get the same waveform and spectrum without a gap, of the frame they ask for")
{
    Line line;
    CHECK(line.connection->GetWaveform()[0] == 0);
    line.connection->Refresh();
    CHECK(line.connection->GetWaveform()[0] == -5);
    CHECK(line.connection->GetWaveform()[2047] == 6);
    CHECK(line.connection->GetSpectrum()[0] == 200);
    CHECK(line.connection->GetSpectrum()[1023] == 201);
}

TEST_CASE("The rate of frames is told as it is")
{
    Line line;
    for (int frame = 0; frame < 60; ++frame) {
        line.data->Refresh();
        QThread::msleep(20);
    }
    const int32_t rate = line.data->GetValue(VisAudioValueFrameRate);
    CHECK(rate > 1000); // on a machine that is busy with other things
    CHECK(rate <= 50'000);
}

TEST_CASE("A track's texts and numbers are told in each form that is asked for")
{
    Line line;
    CHECK(line.Field(VisTrackFieldArtist) == u"(null)");
    line.track.info.tags.artist = "Sigur R\xC3\xB3s \xF0\x9F\x8C\x8A";
    line.track.info.tags.album = "A\xFF\xED\xA0\x80"; // neither a character
    line.track.info.tags.year = "2002";
    line.track.info.tags.genre = "Post-rock";
    line.track.info.tags.trackNumber = 3;
    line.track.lastPlayed = QDateTime(QDate(2001, 2, 3), QTime(4, 5));
    line.track.info.tags.lyrics = std::string(100'000, 'x');
    line.track.info.tags.lyrics.replace(65535, 4, "\xF0\x9F\x8C\x8A"); // across the cut
    line.track.info.durationSeconds = 3725.9;
    line.track.info.bitRate = 319'900;
    line.track.info.channels = 2;
    line.track.info.sampleRate = 48000;
    line.track.position = 3;
    line.track.count = 12;
    line.track.rating = 4;
    line.track.playCount = 7;
    line.host.SetTrack(line.track);
    line.host.SetElapsed(61.7);

    CHECK(line.Field(VisTrackFieldArtist) == u"Sigur R\u00F3s \U0001F30A");
    CHECK(line.Field(VisTrackFieldAlbum).substr(0, 2) == u"A\uFFFD");
    CHECK(line.Field(VisTrackFieldName) == u"Tide");
    CHECK(line.Field(VisTrackFieldYear) == u"2002");
    CHECK(line.Field(VisTrackFieldLyrics) == std::u16string(65535, u'x'));
    CHECK(line.Field(4) == u"(null)");
    CHECK(line.Field(VisTrackFieldCustom3) == u"(null)");
    CHECK(Taken(line.data->ExpandText(u"[ARTIST] %a")) == u"[ARTIST] %a");
    const auto& info = *static_cast<const VisPlayInfo*>(line.data->GetPlayInfo());
    CHECK(info.playlistPosition == 3);
    CHECK(info.playlistLength == 12);
    CHECK(info.elapsedSeconds == 61);
    CHECK(info.bitRate == 320);

    const std::pair<const char16_t*, const char16_t*> properties[] = {
        { u"artist", u"Sigur R\u00F3s \U0001F30A" },
        { u"Name", u"Tide" },
        { u"Date (year)", u"2002" },
        { u"Genre", u"Post-rock" },
        { u"Track #", u"3" },
        { u"Filename", u"Tide.flac" },
        { u"Filename (path)", u"/music/Tide.flac" },
        { u"File Type", u"FLAC" },
        { u"Bitrate", u"320 kbit/s" },
        { u"Duration", u"1:02:05" },
        { u"Number Plays", u"7" },
        { u"Rating", u"4" },
        { u"Playing Now Position", u"2" }, // from 0
        { u"Playing Now File Count", u"12" },
        { u"File Size", u"(null)" }, // there is no such file
        { u"Playlist Images", u"(null)" },
        { u"", u"(null)" },
        { nullptr, u"(null)" },
    };
    for (const auto& [name, value] : properties)
        CHECK(line.Ask(name) == value);
    CHECK(line.Ask(u"Last Played") != u"(null)");
}

TEST_CASE("Pictures of the playlist are those that lie beside the song")
{
    Line line;
    for (const char* name : { "b.JPG", "a.png", "song.flac", ".hidden.png", "two\nlines.png" })
        line.home.Write(name, "x");
    std::filesystem::create_directory(line.home / "folder.png");
    line.track.path = QString::fromStdString(line.home.Path("song.flac"));
    line.host.SetTrack(line.track);
    const std::string expected = line.home.Path("a.png") + "\n" + line.home.Path("b.JPG");
    CHECK(line.Ask(u"Playlist Images") == std::u16string(expected.begin(), expected.end()));
}

TEST_CASE("A track's picture is told once, as a file and as it is")
{
    Line line;
    line.host.SetTrack(line.track);
    const std::u16string first = line.Ask(u"File Change Counter");
    CHECK(line.TakesChange());
    CHECK_FALSE(line.TakesChange());
    CHECK(line.connection->GetCoverImage() == nullptr);
    CHECK(line.Field(VisTrackFieldCoverFile) == u"(null)");

    // A tag that comes late, with the same song.
    line.track.info.tags.cover = { 'P', 'N', 'G' };
    line.track.info.tags.coverType = "image/png";
    line.host.SetTrack(line.track);
    const std::u16string second = line.Ask(u"File Change Counter");
    CHECK(second != first);
    line.host.SetTrack(line.track);
    CHECK(line.Ask(u"File Change Counter") == second);
    line.sound.plays = false; // it waits for a frame
    CHECK_FALSE(line.TakesChange());
    line.sound.plays = true;
    CHECK(line.TakesChange());
    CHECK_FALSE(line.TakesChange());

    const QString file = line.host.CoverFile();
    CHECK(BytesOf(file.toStdString()) == "PNG");
    CHECK(line.Field(VisTrackFieldCoverFile) == file.toStdU16String());
    const auto& picture = *static_cast<const HostPicture*>(line.connection->GetCoverImage());
    CHECK(picture.size == 3);
    CHECK(std::memcmp(picture.bytes, "PNG", 3) == 0);

    line.track.path = "/music/Other.flac"; // of the same album
    line.host.SetTrack(line.track);
    CHECK(line.TakesChange());
    CHECK(line.host.CoverFile() == file);
    line.track.info.tags.cover.clear();
    line.host.SetTrack(line.track);
    CHECK(line.host.CoverFile() == "");
    CHECK_FALSE(std::filesystem::exists(file.toStdString()));
    line.data = line.NewData();
    CHECK_FALSE(line.TakesChange()); // a new script loads it anyway
}

TEST_CASE("What a visualization holds may outlive the host and its sound")
{
    std::unique_ptr<IOQHostConnection> connection;
    std::unique_ptr<IVisAudioData> data;
    {
        Line line;
        line.host.SetTrack(line.track);
        data = line.NewData();
        connection = std::move(line.connection);
    }
    CHECK(data->Refresh() != 0);
    connection->Refresh();
    CHECK(Taken(connection->GetProperty(u"Name")) == u"Tide");
    connection.reset();
    CHECK(Taken(data->GetTrackField(VisTrackFieldName)) == u"Tide");
}
