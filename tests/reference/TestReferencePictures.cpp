#include "ReferencePicture.h"
#include "TestFolder.h"
#include "apps/pxvis/VisualSession.h"
#include "engine2d/CComponentManager.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <set>

namespace fs = std::filesystem;

namespace {

const fs::path folder = PXVIS_SOURCE_DIR "/tests/reference";
const fs::path failures = PXVIS_BINARY_DIR "/tests/reference";

constexpr int32_t width = 101; // odd, for halves to be rounded
constexpr int32_t height = 63;

// The levels on both sides of an impact, and beats of their own and with one.
constexpr std::array<int32_t, 12> levels { 0, 30, 60, 100, 255, 80, 100, 101, 50, 130, 20, 10 };
constexpr std::array<int32_t, 12> beats { 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 1, 0 };

// Between -amplitude and amplitude, once in 256.
int32_t Triangle(int32_t phase, int32_t amplitude)
{
    const int32_t position = phase & 255;
    return (position < 128 ? position * 2 - 127 : 383 - position * 2) * amplitude / 128;
}

pxvis::host::AudioRecord Record(int32_t step)
{
    pxvis::host::AudioRecord record;
    record.level = levels.at(static_cast<size_t>(step));
    record.beat = beats.at(static_cast<size_t>(step));
    record.change = step == 0;
    for (int32_t i = 0; i < 1024; ++i) {
        record.block.waveform[0][i]
            = static_cast<int8_t>(Triangle(i * 2 + step * 37, 128 - (i >> 4)));
        record.block.waveform[1][i] = static_cast<int8_t>(
            Triangle(i, 90) / 2 + Triangle(i * 7 + step * 11, 30) + (i % 256 == 0 ? -40 : 0));
    }
    record.block.waveform[0][300] = -128;
    for (int32_t i = 0; i < 512; ++i) {
        record.block.spectrum[0][i]
            = static_cast<uint8_t>(std::max(0, 255 - i / 2 - (step % 4) * 30 - (i % 8) * 9));
        record.block.spectrum[1][i]
            = static_cast<uint8_t>(std::max(0, 60 + Triangle(i * 3 - step * 20, 120)));
    }
    return record;
}

pxvis::host::SongInfo Song()
{
    pxvis::host::SongInfo song;
    song.tags.artist = "Änne Quiz";
    song.tags.title = "Joy";
    song.durationSeconds = 754;
    return song;
}

// Scripts name their pictures from here. What fonts there are is told before the image module asks.
void EnterFolder()
{
    fs::current_path(folder);
    setenv("FONTCONFIG_FILE", (folder / "fonts.conf").c_str(), 1);
    setenv("XDG_CACHE_HOME", PXVIS_BINARY_DIR "/home/cache", 1);
}

// The picture after the last step.
ReferencePicture Draw(const fs::path& script)
{
    EnterFolder();
    pxvis::VisualSessionSettings settings;
    settings.width = width;
    settings.height = height;
    std::string error;
    const auto session = pxvis::VisualSession::Create(settings, error);
    REQUIRE_MESSAGE(session, error);
    REQUIRE_MESSAGE(session->LoadScript(script, error), error);
    session->SetSong(Song(), "pictures/cover.png");
    for (int32_t step = 0; step < static_cast<int32_t>(levels.size()); ++step)
        REQUIRE(session->Step(Record(step)));
    ReferencePicture picture { width, height, {} };
    const uint32_t* bits = session->Picture().GetBits();
    for (int32_t y = height - 1; y >= 0; --y)
        picture.pixels.insert(picture.pixels.end(), bits + y * width, bits + (y + 1) * width);
    return picture;
}

// Glyphs come from FreeType, cairo and Pango, whose versions differ between systems: these pictures
// are those of Debian 12 with its fonts-dejavu-core.
bool DrawsTextAsRecorded()
{
    const std::string system = BytesOf("/etc/os-release");
    return system.find("\nID=debian\n") != std::string::npos
        && system.find("\nVERSION_ID=\"12\"\n") != std::string::npos
        && fs::exists("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf")
        && fs::exists("/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf");
}

std::set<fs::path> FilesOf(const char* extension)
{
    std::set<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().extension() == extension)
            files.insert(entry.path());
    return files;
}

// PXVIS_RECORD is the name of a script without its ending, or "all".
bool IsToBeRecorded(const std::string& name)
{
    const char* record = std::getenv("PXVIS_RECORD");
    return record && (record == name || std::string(record) == "all");
}

// Keeps what a person needs to judge a failure, and tells where.
std::string KeepFailure(
    const std::string& name, const ReferencePicture& actual, const ReferencePicture& expected)
{
    fs::create_directories(failures);
    const std::string actualPath = failures / (name + "-actual.png");
    REQUIRE(actual.Save(actualPath));
    std::string message = name + ".pxv draws " + actualPath;
    if (expected.width != width || expected.height != height)
        return message + ", and there is no picture of that size to compare it with";
    const std::string differencePath = failures / (name + "-difference.png");
    REQUIRE(actual.DifferenceFrom(expected).Save(differencePath));
    return message + ", which differs as " + differencePath + " shows";
}

}

TEST_CASE("Each script draws its picture, byte for byte")
{
    for (const fs::path& script : FilesOf(".pxv")) {
        const std::string name = script.stem();
        if (name == "text" && !DrawsTextAsRecorded()) {
            MESSAGE("skipped: texts look as recorded on Debian 12 with fonts-dejavu-core only");
            continue;
        }
        const fs::path file = folder / (name + ".png");
        const ReferencePicture actual = Draw(script);
        ReferencePicture expected;
        const bool loaded = expected.Load(file);
        if (IsToBeRecorded(name)) {
            if (actual != expected) {
                REQUIRE(actual.Save(file));
                MESSAGE("recorded: ", name);
            }
        } else if (!loaded || actual != expected) {
            FAIL_CHECK(KeepFailure(name, actual, expected));
        }
    }
}

TEST_CASE("There is a script for each component, output mode and picture")
{
    VISUALIZATION_COMPONENT_INFO_EX info;
    for (int32_t i = 0; CComponentManager::GetInfo(i, info) == 0; ++i) {
        std::string name = info.name;
        std::transform(name.begin(), name.end(), name.begin(),
            [](char c) { return static_cast<char>(c == ' ' ? '-' : c | 0x20); });
        CHECK_MESSAGE(
            BytesOf(folder / (name + ".pxv")).find(info.guid) != std::string::npos, info.name);
    }
    for (const char* mode : { "replace", "blend", "add" })
        CHECK(fs::exists(folder / ("output-mode-" + std::string(mode) + ".pxv")));

    std::set<fs::path> withoutScript;
    for (fs::path picture : FilesOf(".png"))
        if (!fs::exists(picture.replace_extension(".pxv")))
            withoutScript.insert(picture);
    for (const fs::path& script : withoutScript)
        FAIL_CHECK("there is a picture, but no script " << script.string());
}
