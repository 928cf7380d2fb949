#include "TestFile.h"
#include "apps/pxvis/Checked.h"
#include "apps/pxvis/FlashCheck.h"
#include "apps/pxvis/RenderCommand.h"
#include "apps/pxvis/SongPlayback.h"
#include "host/SongFile.h"
#include "host/analysis/ClickTrack.h"

#include <doctest/doctest.h>

#include <sstream>

namespace {

constexpr const char* strobe = PXVIS_SOURCE_DIR "/tests/data/flash/strobe-8-a-second.pxv";

std::string SongOf(const TestFolder& folder, size_t seconds)
{
    const std::string song = folder.Path("song.flac");
    std::vector<float> samples(2 * seconds * pxvis::host::SampleRate);
    pxvis::host::ClickTrack().Read(samples.data(), samples.size() / 2);
    std::string error;
    REQUIRE_MESSAGE(WriteSongFile(song, samples, "flacenc", nullptr, error), error);
    return song;
}

}

TEST_CASE("A span goes from its first to its last flash, with the most of what it has")
{
    using pxvis::FlashSpan;
    constexpr int64_t tenth = CVisFlashMeter::second / 10;
    CVisFlashMeter meter;
    pxvis::FlashSpans spans;
    std::vector<uint32_t> pixels(64);
    int64_t tenths = 0;
    // Changes a part of the picture, so many tenths of a second from each other.
    const auto flash = [&](int changes, int64_t pause, uint32_t color, size_t area) {
        for (int i = 0; i < changes; ++i) {
            std::fill_n(pixels.begin(), area, pixels[0] == 0 ? color : 0);
            meter.Add({ pixels.data(), 8, 8, 8 }, tenths * tenth);
            spans.Add(meter);
            tenths += pause;
        }
    };
    meter.Add({ pixels.data(), 8, 8, 8 }, 0);
    tenths = 10;
    flash(20, 3, 0xFFFFFF, 64); // harmless, to 6.7 s
    tenths = 100;
    flash(10, 1, 0xFFFFFF, 32); // to 10.9 s
    tenths = 120;
    flash(7, 1, 0xFFFFFF, 64); // to 12.6 s
    tenths = 140;
    flash(3, 5, 0xFFFFFF, 64);
    tenths = 200;
    flash(8, 1, 0x500000, 64); // too dark for a general flash, to 20.7 s
    const std::vector<FlashSpan> expected
        = { { CVisFlashKind::General, 100 * tenth, 109 * tenth, 5, 50 },
              { CVisFlashKind::General, 120 * tenth, 126 * tenth, 4, 100 },
              { CVisFlashKind::Red, 200 * tenth, 207 * tenth, 4, 100 } };
    CHECK(spans.Sorted() == expected);
}

TEST_CASE("check --flash tells where a script flashes, and passes others and other songs' parts")
{
    const TestFolder folder;
    const TestFile still("still.pxv", "<PXV Version=\"1.0\"/>");
    pxvis::CheckOptions options { { still.Path(), strobe } };
    options.flash = true;
    options.song = SongOf(folder, 2);
    const Checked human(options);
    INFO(human.text);
    CHECK(human.status == 1);
    CHECK(human.text.find(std::string(strobe) + ": 0:00.") == 0);
    CHECK(human.text.find(" to 0:01.9: 8 flashes a second over ") != std::string::npos);
    CHECK(human.text.find(" % of the picture (general)\n") == human.text.size() - 28);
    CHECK(human.fault == "pxvis: warning: " + still.Path() + ": 1 fault; see pxvis check\n");

    options.json = true;
    const Checked json(options);
    INFO(json.text);
    CHECK(json.text.find(",\"from\":0.0") != std::string::npos);
    CHECK(json.text.find(",\"to\":1.9") != std::string::npos);
    CHECK(json.text.find(",\"flashes\":8,\"area\":") != std::string::npos);
    CHECK(json.text.find(",\"kind\":\"general\"}\n") == json.text.size() - 19);

    options.scripts = { still.Path() };
    CHECK(Checked(options).status == 0);
    options.scripts = { still.Path(), "/nowhere.pxv", still.Path() };
    CHECK(Checked(options).status == 1);
    options.song = "/nowhere.mp3";
    const Checked noSong(options);
    CHECK(noSong.status == 1);
    CHECK(noSong.fault == "pxvis: /nowhere.mp3: no such file\n");
}

TEST_CASE("Without a song there is the click track")
{
    const TestFile still("still.pxv", "<PXV Version=\"1.0\"/>");
    pxvis::RenderOptions options;
    options.script = still.Path();
    options.width = options.height = 16;
    std::ostringstream errors;
    std::string error;
    const auto playback = pxvis::SongPlayback::Open(options, error, errors);
    REQUIRE_MESSAGE(playback, error);
    while (playback->NextStep()) { }
    CHECK(playback->Error() == "");
    CHECK(playback->StepCount() == 60 * pxvis::host::ClickTrack::Seconds);
}

TEST_CASE("A render damps what flashes and tells so in one line, unless it is to leave it")
{
    const TestFolder folder;
    const TestFolder pictures;
    pxvis::RenderOptions options;
    options.song = SongOf(folder, 2);
    options.script = strobe;
    options.width = 64;
    options.height = 36;
    options.frameRate = { 30, 1 };
    const auto render = [&](const std::string& output) {
        options.output = pictures.Path(output);
        std::ostringstream errors;
        CHECK(pxvis::RunRender(options, errors) == 0);
        return errors.str();
    };
    const std::string line = render("on-%02d.png");
    CHECK(line.find("pxvis: warning: ") == 0);
    CHECK(line.find(" of 60 pictures were damped") != std::string::npos);
    CHECK(line.find('\n') == line.size() - 1);
    options.pictureScale = 0.5;
    CHECK(render("half.mp4").find(" of 60 pictures were damped") != std::string::npos);
    options.pictureScale = 1;
    options.flashLimit = false;
    CHECK(render("off-%02d.png") == "");
    const auto isEqual = [&](const char* number) {
        return pictures.Read(std::string("on-") + number)
            == pictures.Read(std::string("off-") + number);
    };
    CHECK(isEqual("05.png"));
    CHECK(!isEqual("40.png"));
    // A single picture is as it is drawn.
    options.flashLimit = true;
    options.at = 39.1 / 30;
    CHECK(render("single.png") == "");
    CHECK(pictures.Read("single.png") == pictures.Read("off-40.png"));
}
