#include "FileSizeLimit.h"
#include "TestFolder.h"
#include "host/VideoFile.h"
#include "host/VideoWriter.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

using pxvis::host::EncodeLevel;
using pxvis::host::EncodeSettings;
using pxvis::host::SoundCoding;
using pxvis::host::VideoWriter;
using namespace std::string_literals;

namespace {

constexpr int Rate = VideoWriter::SampleRate;
constexpr int ClickSample = Rate / 2;

// A colour and what BT.709 in the limited range makes of it.
struct Colour
{
    uint32_t pixel;
    int y, cb, cr;
};

constexpr Colour Colours[] = {
    { 0xFFFF0000, 63, 102, 240 },
    { 0x0000FF00, 173, 42, 26 },
    { 0xFF0000FF, 32, 240, 118 },
    { 0xFFFFFFFF, 235, 128, 128 },
    { 0x80000000, 16, 128, 128 },
    { 0xFF808080, 126, 128, 128 },
};

EncodeSettings SmallSettings()
{
    EncodeSettings settings;
    settings.width = 64;
    settings.height = 36;
    settings.level = EncodeLevel::Draft;
    return settings;
}

// The colour of a picture's half: changes every ten pictures, the lower half is one ahead.
const Colour& ColourOf(uint64_t picture, bool lower)
{
    return Colours[(picture / 10 + lower) % std::size(Colours)];
}

// Two seconds with one click in the middle of the first; sound a picture ahead.
bool WriteClip(VideoWriter& writer, const EncodeSettings& settings)
{
    const auto width = static_cast<size_t>(settings.width);
    const auto height = static_cast<size_t>(settings.height);
    const int count = 2 * settings.rateNumerator / settings.rateDenominator;
    std::vector<uint32_t> bottomUp(width * height);
    int64_t sample = 0;
    for (int k = 0; k < count; ++k) {
        const int64_t until
            = int64_t { Rate } * (k + 1) * settings.rateDenominator / settings.rateNumerator;
        std::vector<float> sound;
        for (; sample < until; ++sample)
            sound.insert(sound.end(), 2, sample == ClickSample ? 0.9f : 0.0f);
        for (size_t i = 0; i < bottomUp.size(); ++i)
            bottomUp[i] = ColourOf(static_cast<uint64_t>(k), i < bottomUp.size() / 2).pixel;
        if (!writer.AddSound(sound.data(), sound.size() / 2)
            || !writer.AddPicture(
                bottomUp.data() + width * (height - 1), -static_cast<ptrdiff_t>(width)))
            return false;
    }
    return true;
}

std::string MakeClip(const std::string& path, const EncodeSettings& settings)
{
    std::string error;
    const auto writer = VideoWriter::Open(path, settings, error);
    if (!writer)
        return error;
    const std::vector<float> ahead(size_t { Rate } / 2); // must not make the video longer
    if (!WriteClip(*writer, settings) || !writer->AddSound(ahead.data(), ahead.size() / 2)
        || !writer->Finish())
        return writer->Error();
    return {};
}

// The clip's sound and a quarter of a second more, as click.wav.
void WriteClickWave(const TestFolder& folder)
{
    constexpr uint32_t byteCount = Rate * 9 / 4 * 2;
    std::string wave = "RIFF....WAVEfmt \x10\0\0\0\1\0\1\0"s;
    const auto append = [&](uint32_t value) {
        for (int i = 0; i < 4; ++i)
            wave += static_cast<char>(value >> 8 * i);
    };
    append(Rate);
    append(Rate * 2);
    wave += "\2\0\x10\0data"s;
    append(byteCount);
    wave.resize(wave.size() + byteCount);
    wave[44 + 2 * ClickSample + 1] = 0x60;
    folder.Write("click.wav", wave);
}

void Convert(const TestFolder& folder, const std::string& encoder, const std::string& name)
{
    const std::string line = "filesrc location=" + folder.Path("click.wav")
        + " ! wavparse ! audioconvert ! " + encoder + " ! filesink location=" + folder.Path(name);
    const pxvis::host::GstHolder<GstElement> pipeline(gst_parse_launch(line.c_str(), nullptr));
    REQUIRE(pipeline);
    const pxvis::host::GstHolder<GstBus> bus(gst_element_get_bus(pipeline.get()));
    gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
    const pxvis::host::GstHolder<GstMessage> end(gst_bus_timed_pop_filtered(bus.get(),
        20 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR)));
    gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    REQUIRE(end);
    CHECK(GST_MESSAGE_TYPE(end.get()) == GST_MESSAGE_EOS);
}

double ClickTime(const VideoFile& file)
{
    const auto loudest = std::max_element(file.sound.begin(), file.sound.end(),
        [](float a, float b) { return std::fabs(a) < std::fabs(b); });
    return static_cast<double>(loudest - file.sound.begin()) / std::max(file.soundRate, 1);
}

void CheckClick(const VideoFile& file, double seconds)
{
    CHECK(file.soundBegin == 0);
    CHECK(ClickTime(file) == doctest::Approx(0.5).epsilon(0.001));
    const double length = static_cast<double>(file.sound.size()) / file.soundRate;
    CHECK(length < seconds + 0.021);
    CHECK(length
        > seconds - 0.024); // GStreamer leaves an AAC track with an edit list one block short
}

}

TEST_CASE("A video holds the pictures' colours, the right way up, at their exact times")
{
    const TestFolder folder;
    EncodeSettings settings = SmallSettings();
    settings.tags.title = "Ein Stück";
    settings.tags.artist = "pxvis";
    settings.tags.year = "1987-05-03";
    const std::string cover = "\xFF\xD8\xFF picture";
    settings.tags.cover.assign(cover.begin(), cover.end());
    settings.tags.coverType = "image/jpeg";
    REQUIRE(MakeClip(folder.Path("clip.mp4"), settings) == "");
    CHECK(folder.Names() == "clip.mp4 ");

    const VideoFile file(folder.Path("clip.mp4"));
    CHECK(file.fault == "");
    CHECK(file.width == 64);
    CHECK(file.height == 36);
    CHECK(file.format.find("format=(string)I420") != std::string::npos);
    CHECK(file.format.find("colorimetry=(string)bt709") != std::string::npos);
    REQUIRE(file.pictures.size() == 120);
    for (size_t k = 0; k < 120; ++k) {
        CAPTURE(k);
        const VideoFile::Picture& picture = file.pictures[k];
        // The file counts in 1/6000 s; a nanosecond is lost on the way back.
        CHECK(std::llabs(static_cast<int64_t>(picture.begin)
                  - static_cast<int64_t>(k * 1'000'000'000 / 60))
            <= 1);
        for (const bool lower : { false, true }) {
            const Colour& wanted = ColourOf(k, lower);
            CHECK(std::abs(picture.y[64 * (lower ? 27 : 9) + 32] - wanted.y) <= 3);
            CHECK(std::abs(picture.cb[32 * (lower ? 13 : 4) + 16] - wanted.cb) <= 3);
            CHECK(std::abs(picture.cr[32 * (lower ? 13 : 4) + 16] - wanted.cr) <= 3);
        }
    }
    CheckClick(file, 2);

    char* title = nullptr;
    CHECK(gst_tag_list_get_string(file.tags.get(), GST_TAG_TITLE, &title));
    CHECK(std::string(pxvis::host::GstHolder<char>(title).get()) == "Ein Stück");

    GDate* date = nullptr;
    REQUIRE(gst_tag_list_get_date(file.tags.get(), GST_TAG_DATE, &date));
    CHECK(g_date_get_year(date) == 1987);
    g_date_free(date);

    const std::string bytes = folder.Read("clip.mp4");
    CHECK(bytes.find(cover) != std::string::npos);
    CHECK(bytes.find("moov") < bytes.find("mdat"));
    CHECK(bytes.find("colrnclx") != std::string::npos);
    CHECK(bytes.find("1987"s) != std::string::npos);
    CHECK(bytes.find("1987-"s) == std::string::npos); // the month isn't known
}

TEST_CASE("Rates that are no whole number keep sound and pictures together, in either coding")
{
    for (const SoundCoding coding : { SoundCoding::Aac, SoundCoding::Opus }) {
        const TestFolder folder;
        EncodeSettings settings = SmallSettings();
        settings.rateNumerator = 30000;
        settings.rateDenominator = 1001;
        settings.level = EncodeLevel::Good;
        settings.sound = coding;
        REQUIRE(MakeClip(folder.Path("clip.mp4"), settings) == "");
        const VideoFile file(folder.Path("clip.mp4"));
        CHECK(file.fault == "");
        REQUIRE(file.pictures.size() == 59);
        for (size_t k = 0; k < 59; ++k)
            CHECK(std::llabs(static_cast<int64_t>(file.pictures[k].begin)
                      - static_cast<int64_t>(k * 1'001'000'000 / 30))
                <= 1);
        CheckClick(file, 59 * 1001 / 30000.0);
    }
}

TEST_CASE("A WebM file holds the same pictures and sound, and can be jumped about in")
{
    const TestFolder folder;
    for (const EncodeLevel level : { EncodeLevel::Draft, EncodeLevel::Good, EncodeLevel::Best }) {
        EncodeSettings settings = SmallSettings();
        settings.container = pxvis::host::VideoContainer::WebM;
        settings.level = level;
        settings.sound = SoundCoding::Opus;
        settings.replace = true;
        settings.tags.title = "Ein \"Stück\"";
        settings.tags.year = "1987";
        REQUIRE(MakeClip(folder.Path("clip.webm"), settings) == "");
        CHECK(folder.Names() == "clip.webm ");
        const VideoFile file(folder.Path("clip.webm"));
        CHECK(file.fault == "");
        CHECK(file.format.find("colorimetry=(string)bt709") != std::string::npos);
        REQUIRE(file.pictures.size() == 120);
        for (size_t k = 0; k < 120; ++k) {
            CAPTURE(k);
            CHECK(std::llabs(static_cast<int64_t>(file.pictures[k].begin)
                      - static_cast<int64_t>(k * 1'000'000'000 / 60))
                <= 500'001); // the file counts milliseconds
            const Colour& wanted = ColourOf(k, false);
            CHECK(std::abs(file.pictures[k].y[64 * 9 + 32] - wanted.y) <= 4);
            CHECK(std::abs(file.pictures[k].cb[32 * 4 + 16] - wanted.cb) <= 4);
            CHECK(std::abs(file.pictures[k].cr[32 * 4 + 16] - wanted.cr) <= 4);
        }
        CHECK(file.soundBegin == 0);
        CHECK(ClickTime(file) == doctest::Approx(0.5).epsilon(0.001));
        // The last Opus packet ends behind the pictures.
        CHECK(static_cast<double>(file.sound.size()) / file.soundRate < 2.041);

        const std::string bytes = folder.Read("clip.webm");
        CHECK(bytes.find("webm") < 64);
        CHECK(bytes.find("\x1C\x53\xBB\x6B") != std::string::npos); // cues
        CHECK(bytes.find("\x44\x89") < bytes.find("\x1F\x43\xB6\x75")); // length before clusters
        // Tag texts as they are, with their lengths.
        CHECK(bytes.find("TITLE\0\x44\x87\x8C"s + settings.tags.title) != std::string::npos);
        CHECK(bytes.find("DATE\0\x44\x87\x84"s + settings.tags.year) != std::string::npos);
        char* title = nullptr;
        REQUIRE(gst_tag_list_get_string(file.tags.get(), GST_TAG_TITLE, &title));
        CHECK(std::string(pxvis::host::GstHolder<char>(title).get()) == settings.tags.title);
    }
}

TEST_CASE("The smallest, the longest and the slowest videos are whole")
{
    const auto whole = [](int width, int height, int numerator, int denominator, size_t count) {
        const TestFolder folder;
        EncodeSettings settings = SmallSettings();
        settings.width = width;
        settings.height = height;
        settings.rateNumerator = numerator;
        settings.rateDenominator = denominator;
        REQUIRE(MakeClip(folder.Path("clip.mp4"), settings) == "");
        const VideoFile file(folder.Path("clip.mp4"));
        CHECK(file.fault == "");
        CHECK(file.width == width);
        CHECK(file.height == height);
        CHECK(file.pictures.size() == count);
        CheckClick(file, 2);
    };
    whole(16, 16, 60, 1, 120);
    whole(16384, 16, 5, 1, 10);
    whole(16, 4096, 5, 1, 10);
    whole(32, 32, 1000, 1, 2000);
    whole(32, 32, 1, 2, 1);
}

TEST_CASE("A video that is not finished leaves nothing behind")
{
    const TestFolder folder;
    const EncodeSettings settings = SmallSettings();
    std::string error;
    {
        const auto writer = VideoWriter::Open(folder.Path("clip.mp4"), settings, error);
        REQUIRE_MESSAGE(writer, error);
        CHECK(WriteClip(*writer, settings));
        CHECK(folder.Names() == "clip.mp4.part ");
    }
    CHECK(folder.Names().empty());

    const auto writer = VideoWriter::Open(folder.Path("clip.mp4"), settings, error);
    REQUIRE(writer);
    CHECK_FALSE(writer->Finish());
    CHECK(writer->Error() == folder.Path("clip.mp4") + ": there is nothing to write");
    CHECK(folder.Names().empty());
    CHECK_FALSE(writer->Finish());
    CHECK_FALSE(WriteClip(*writer, settings));
}

TEST_CASE("A full disk ends a video with one clear line")
{
    const TestFolder folder;
    const EncodeSettings settings = SmallSettings();
    std::string error;
    const FileSizeLimit limit(2000);
    const auto writer = VideoWriter::Open(folder.Path("clip.mp4"), settings, error);
    REQUIRE_MESSAGE(writer, error);
    CHECK_FALSE((WriteClip(*writer, settings) && writer->Finish()));
    CHECK(writer->Error().find(folder.Path("clip.mp4") + ": ") == 0);
    CHECK(writer->Error().find('\n') == std::string::npos);
    writer->Abort();
    CHECK(folder.Names().empty());
}

TEST_CASE("Settings out of range and places that can't be written are refused at the start")
{
    const TestFolder folder;
    const auto refused = [&](const std::string& name, auto change) {
        EncodeSettings settings = SmallSettings();
        change(settings);
        std::string error;
        CHECK_FALSE(VideoWriter::Open(folder.Path(name), settings, error));
        CHECK(error.find(folder.Path(name) + ": ") == 0);
    };
    refused("a.mp4", [](EncodeSettings& s) { s.width = 63; });
    refused("a.mp4", [](EncodeSettings& s) { s.height = 0; });
    refused("a.mp4", [](EncodeSettings& s) { s.height = 14; });
    refused("a.mp4", [](EncodeSettings& s) { s.width = 16386; });
    refused("a.mp4", [](EncodeSettings& s) { s.width = s.height = 16384; });
    refused("a.mp4", [](EncodeSettings& s) { s.rateNumerator = 0; });
    refused("a.mp4", [](EncodeSettings& s) { s.rateDenominator = -1; });
    refused("a.mp4", [](EncodeSettings& s) { s.rateNumerator = 2000000000; });
    refused("a.mp4", [](EncodeSettings& s) { s.sound = SoundCoding::Copy; });
    refused("a.webm",
        [](EncodeSettings& s) { s.container = pxvis::host::VideoContainer::WebM; }); // AAC
    refused("missing/a.mp4", [](EncodeSettings&) {});
    CHECK(folder.Names().empty());
    folder.Write("a.mp4", "mine");
    refused("a.mp4", [](EncodeSettings&) {});
    CHECK(folder.Read("a.mp4") == "mine");
}

TEST_CASE("A song's own sound is copied unless an MP4 file can't hold it")
{
    const TestFolder folder;
    EncodeSettings settings = SmallSettings();
    for (const SoundCoding coding : { SoundCoding::Aac, SoundCoding::Opus }) {
        settings.sound = coding;
        settings.replace = true;
        REQUIRE(MakeClip(folder.Path("song.mp4"), settings) == "");
        settings.sound = SoundCoding::Copy;
        settings.songPath = folder.Path("song.mp4");
        REQUIRE(MakeClip(folder.Path("clip.mp4"), settings) == "");
        const VideoFile file(folder.Path("clip.mp4"));
        CHECK(file.fault == "");
        CHECK(file.pictures.size() == 120);
        CheckClick(file, 2);
    }
    WriteClickWave(folder);
    settings.songPath = folder.Path("click.mp3");
    Convert(folder, "lamemp3enc", "click.mp3");
    REQUIRE(MakeClip(folder.Path("mp3.mp4"), settings) == "");
    CheckClick(VideoFile(folder.Path("mp3.mp4")), 2);

    // From 0.3 s on; this AAC file does not tell of its run-up, so that all of it is 1024 late.
    constexpr double unknownRunUp = 1024.0 / Rate;
    const std::pair<const char*, double> songs[] = { { "lamemp3enc", 0.2 },
        { "avenc_aac ! mp4mux", 0.2 + unknownRunUp }, { "audioresample ! opusenc ! oggmux", 0.2 } };
    settings.replace = true;
    settings.songStart = 0.3;
    settings.songPath = folder.Path("late.song");
    for (const auto& [encoder, clickAt] : songs) {
        CAPTURE(std::string(encoder));
        Convert(folder, encoder, "late.song");
        REQUIRE(MakeClip(folder.Path("late.mp4"), settings) == "");
        CHECK(ClickTime(VideoFile(folder.Path("late.mp4")))
            == doctest::Approx(clickAt).epsilon(0.002));
    }

    settings.songPath = folder.Path("click.flac");
    Convert(folder, "flacenc", "click.flac");
    CHECK(MakeClip(folder.Path("other.mp4"), settings)
        == folder.Path("other.mp4")
            + ": an MP4 file can't hold the song's own sound (audio/x-flac); take aac or opus");
    folder.Write("noise.wav", "RIFF");
    settings.songPath = folder.Path("noise.wav");
    CHECK(MakeClip(folder.Path("other.mp4"), settings)
        == folder.Path("other.mp4") + ": the sound of " + settings.songPath + " can't be copied");
    CHECK(folder.Names()
        == "click.flac click.mp3 click.wav clip.mp4 late.mp4 late.song mp3.mp4 noise.wav "
           "song.mp4 ");
}
