#include "host/RecordAudioData.h"

#include "pxvis/SysString.h"

#include <doctest/doctest.h>

#include <cstring>

using namespace pxvis::host;

namespace {

std::u16string Take(char16_t* text)
{
    std::u16string copy = text ? text : u"(null)";
    SysFreeString(text);
    return copy;
}

int32_t IntAt(const void* record, size_t offset)
{
    int32_t value = 0;
    std::memcpy(&value, static_cast<const char*>(record) + offset, sizeof value);
    return value;
}

}

TEST_CASE("All answers within a frame are those of its Refresh")
{
    auto state = std::make_shared<RecordAudioState>();
    const std::unique_ptr<IVisAudioData> audio = std::make_unique<RecordAudioData>(state);
    CHECK(audio->Refresh() != 0);

    state->ready = true;
    state->record.level = 150;
    state->record.beat = 1;
    state->record.change = 1;
    state->record.block.spectrum[1][511] = 77;
    state->frameRate = 59940;
    REQUIRE(audio->Refresh() == 0);
    state->record = {};
    CHECK(audio->GetValue(VisAudioValueLevel) == 150);
    CHECK(audio->GetValue(VisAudioValueBeat) == 1);
    CHECK(audio->GetValue(VisAudioValueChange) == 1);
    CHECK(audio->GetValue(VisAudioValueFrameRate) == 59940);
    CHECK(audio->GetValue(4) == 0);
    CHECK(audio->GetData()->spectrum[1][511] == 77);
    REQUIRE(audio->Refresh() == 0);
    CHECK(audio->GetValue(VisAudioValueChange) == 0);
    CHECK(audio->GetData()->spectrum[1][511] == 0);
}

TEST_CASE("Track fields and play info tell about the song, and unknown fields are null")
{
    SongInfo info;
    info.tags.artist = "Émilie 🎵";
    info.tags.title = "bad \xFF byte";
    info.tags.lyrics = "la";
    info.durationSeconds = 185.9;
    info.bitRate = 319'600;
    info.channels = 2;
    info.sampleRate = 48000;
    auto state = std::make_shared<RecordAudioState>();
    state->SetSong(info, "/tmp/cover.jpg");
    state->playInfo.elapsedSeconds = 42;
    RecordAudioData audio(state);

    CHECK(Take(audio.GetTrackField(VisTrackFieldArtist)) == u"Émilie 🎵");
    CHECK(Take(audio.GetTrackField(VisTrackFieldName)) == u"bad \uFFFD byte");
    CHECK(Take(audio.GetTrackField(VisTrackFieldCoverFile)) == u"/tmp/cover.jpg");
    CHECK(Take(audio.GetTrackField(VisTrackFieldLyrics)) == u"la");
    for (const int32_t field : { -1, 1, 4, 6, 10, 11, 1000 })
        CHECK(audio.GetTrackField(field) == nullptr);
    CHECK(Take(audio.ExpandText(u"ARTIST")) == u"ARTIST");
    CHECK(audio.ExpandText(nullptr) == nullptr);

    const void* play = audio.GetPlayInfo();
    CHECK(IntAt(play, 524) == 1);
    CHECK(IntAt(play, 528) == 1);
    CHECK(IntAt(play, 532) == 185);
    CHECK(IntAt(play, 536) == 42);
    CHECK(IntAt(play, 540) == 320);
    CHECK(IntAt(play, 544) == 2);
    CHECK(IntAt(play, 548) == 48000);
}
