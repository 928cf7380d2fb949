#include "TestFolder.h"
#include "apps/pxvis/main/Program.h"
#include "apps/pxvis/main/VideoEvents.h"

#include <doctest/doctest.h>

#include <cmath>
#include <numbers>

namespace {

#ifdef NDEBUG
constexpr bool isSlowBuild = false;
#else
constexpr bool isSlowBuild = true;
#endif

// Draws bars over the whole height, white but for their foot, as soon as there is any sound.
constexpr const char* flashScript
    = "<PXV Version=\"1.0\"><Layer><Properties><ClearEachFrame>1</ClearEachFrame></Properties>"
      "<Component GUID=\"B21F9002-EF2E-4d5b-9D40-F61B8F3B34D8\" Name=\"Spectrum Analyzer\">"
      "<Properties><Gradient>{2, 1} [[0x000000,0xFFFFFF]]</Gradient><BarGravity>60000</BarGravity>"
      "<BarTerminalVelocity>60000</BarTerminalVelocity>"
      "<DrawPeaks>0</DrawPeaks><FrequencyScale>1</FrequencyScale><TopWeight>0</TopWeight>"
      "<UpScale>1</UpScale></Properties></Component></Layer></PXV>";

// Silence with bursts of 1 kHz; a file of little more than holes.
void WriteSong(const std::string& path, uint32_t seconds, const std::vector<double>& bursts)
{
    constexpr uint32_t rate = 8000;
    const uint32_t bytes = rate * 2 * seconds;
    std::ofstream file(path, std::ios::binary);
    const auto put = [&](uint32_t value, int count) {
        for (int i = 0; i < count; ++i)
            file.put(static_cast<char>(value >> 8 * i));
    };
    file << "RIFF";
    put(36 + bytes, 4);
    file << "WAVEfmt ";
    put(16, 4);
    put(1, 2); // PCM
    put(1, 2); // channel
    put(rate, 4);
    put(rate * 2, 4);
    put(2, 2);
    put(16, 2);
    file << "data";
    put(bytes, 4);
    for (const double burst : bursts) {
        file.seekp(44 + 2 * std::lround(burst * rate));
        for (int i = 0; i < 400; ++i)
            put(static_cast<uint32_t>(
                    std::lround(24000 * std::sin(2 * std::numbers::pi * 1000 * (i + 0.5) / rate))),
                2);
    }
    file.close();
    std::filesystem::resize_file(path, 44 + bytes);
}

void CheckTogether(const std::string& kind, uint32_t seconds, std::vector<std::string> options)
{
    constexpr double frame = 1.0 / 12;
    CAPTURE(kind);
    const TestFolder folder;
    // Between two frames, so that it is clear which one is the first to hear a burst.
    const std::vector<double> bursts { 1 + frame / 2, seconds / 2 + frame / 2,
        seconds - 2 + frame / 2 };
    WriteSong(folder.Path("song.wav"), seconds, bursts);
    folder.Write("flash.pxv", flashScript);
    const std::string video = folder.Path("out." + kind);
    options.insert(options.begin(),
        { "render", folder.Path("song.wav"), "-o", video, "--script", folder.Path("flash.pxv"),
            "--size", "64x36", "--encode", "draft" });
    Program render(options, { folder.Path("errors") });
    REQUIRE_MESSAGE(render.Wait(250) == 0, folder.Read("errors"));

    const VideoEvents events(video);
    CHECK(events.fault == "");
    CHECK(events.pictures == seconds * 12);
    CHECK(std::fabs(events.soundEnd - seconds) < 0.03);
    REQUIRE(events.clicks.size() == 3);
    REQUIRE(events.flashes.size() == 3);
    for (size_t i = 0; i < 3; ++i) {
        CAPTURE(i);
        // Of an MP4's Opus GStreamer cuts the run-up, 6.5 ms, off twice.
        CHECK(std::fabs(events.clicks[i] - bursts[i]) < 0.008);
        CHECK(std::fabs(events.flashes[i] - (bursts[i] + frame / 2)) < 0.001);
    }
}

}

TEST_CASE("Sound and picture stay together over an hour" * doctest::skip(isSlowBuild))
{
    CheckTogether("mp4", 3600, { "--fps", "12", "--step-rate", "12" });
}

TEST_CASE("Sound and picture are together in every kind of video")
{
    const uint32_t seconds = isSlowBuild ? 12 : 240;
    CheckTogether("webm", seconds, { "--fps", "12", "--step-rate", "12" });
    CheckTogether("mp4", seconds, { "--fps", "12", "--step-rate", "60", "--audio", "opus" });
}
