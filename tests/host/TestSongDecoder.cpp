#include "TestFolder.h"
#include "TestVariable.h"
#include "host/CoverFile.h"
#include "host/GStreamer.h"
#include "host/SongDecoder.h"
#include "host/SongFile.h"
#include "host/analysis/SongAnalyzer.h"
#include "host/analysis/Synthesizer.h"

#include <doctest/doctest.h>
#include <sys/stat.h>

#include <cstring>
#include <map>

using namespace pxvis::host;

namespace {

constexpr char Wav[] = "wavenc";
constexpr char Flac[] = "flacenc";
constexpr char Mp3[] = "lamemp3enc target=bitrate bitrate=320 cbr=true";
constexpr char TaggedMp3[] = "lamemp3enc target=bitrate bitrate=320 cbr=true ! id3v2mux";
constexpr char Opus[] = "opusenc bitrate=256000 ! oggmux";
constexpr char Vorbis[] = "vorbisenc quality=0.9 ! oggmux";

// Chords over a bass, with no noise, which lossy encoders change.
Synthesizer Chords()
{
    Synthesizer song(6);
    for (int bar = 0; bar < 3; ++bar) {
        const double root = bar == 1 ? 98 : 110;
        for (const double interval : { 2.0, 2.5, 3.0, 4.0 })
            song.Tone(bar * 2, 2, root * interval, 0.1, 0.05);
        for (int note = 0; note < 4; ++note)
            song.Tone(bar * 2 + note * 0.5, 0.48, root / 2, 0.3);
    }
    return song;
}

std::string WriteChords(const TestFolder& folder, const std::string& name,
    const std::string& encoder, const GstTagList* tags = nullptr)
{
    Synthesizer song = Chords();
    std::string error;
    REQUIRE_MESSAGE(WriteSongFile(folder.Path(name), song.Samples(), encoder, tags, error), error);
    return folder.Path(name);
}

std::vector<float> Decode(const std::string& path, std::string& error)
{
    std::vector<float> samples;
    const auto decoder = SongDecoder::Open(path, error);
    if (!decoder)
        return samples;
    float block[2 * 1000];
    while (const size_t count = decoder->Read(block, 1000))
        samples.insert(samples.end(), block, block + 2 * count);
    error = decoder->Error();
    return samples;
}

std::vector<AudioRecord> Analyze(const std::string& path)
{
    std::string error;
    const auto decoder = SongDecoder::Open(path, error);
    REQUIRE_MESSAGE(decoder, error);
    SongAnalyzer analyzer(*decoder);
    std::vector<AudioRecord> records(1);
    while (analyzer.Next(records.back()))
        records.emplace_back();
    records.pop_back();
    CHECK(decoder->Error().empty());
    return records;
}

std::string OpenError(const std::string& path)
{
    std::string error;
    CHECK_FALSE(SongDecoder::Open(path, error));
    CHECK(error.starts_with(path + ": "));
    CHECK(error.find('\n') == std::string::npos);
    return error.substr(std::min(error.size(), path.size() + 2));
}

}

TEST_CASE("Mp3, FLAC and WAV of one song give the same records")
{
    const TestFolder folder;
    const auto wav = Analyze(WriteChords(folder, "song.wav", Wav));
    const auto flac = Analyze(WriteChords(folder, "song.flac", Flac));
    REQUIRE(wav.size() == 360);
    REQUIRE(flac.size() == 360);
    CHECK(std::memcmp(wav.data(), flac.data(), wav.size() * sizeof(AudioRecord)) == 0);

    for (const char* encoder :
        { Mp3, TaggedMp3, "lamemp3enc target=bitrate bitrate=320 cbr=true ! xingmux" }) {
        CAPTURE(encoder);
        const auto mp3 = Analyze(WriteChords(folder, "song.mp3", encoder));
        REQUIRE(mp3.size() >= 360);
        CHECK(mp3.size() <= 362); // the last frame is filled up
        int far = 0;
        for (size_t step = 0; step < 360; ++step) {
            for (size_t i = 0; i < 1024; ++i) {
                const int a = wav[step].block.spectrum[i / 512][i % 512];
                const int b = mp3[step].block.spectrum[i / 512][i % 512];
                far += std::abs(a - b) > 2;
            }
        }
        CHECK(far < 0.01 * 360 * 1024);
    }
}

TEST_CASE("Every format starts where the song starts, at 44.1 kHz and in stereo")
{
    const TestFolder folder;
    const std::vector<float> original = Chords().Samples();
    const std::map<std::string, std::string> formats = { { "song.wav", Wav }, { "song.flac", Flac },
        { "song.mp3", Mp3 }, { "song.opus", Opus }, { "song.ogg", Vorbis },
        { "low.wav", "audio/x-raw,rate=22050 ! wavenc" },
        { "low.mp3", "audio/x-raw,rate=22050 ! lamemp3enc target=bitrate bitrate=160 cbr=true" },
        { "mono.wav", "audio/x-raw,channels=1 ! wavenc" },
        { "six.flac", "audio/x-raw,channels=6,channel-mask=(bitmask)0x3f ! flacenc" } };
    for (const auto& [name, encoder] : formats) {
        CAPTURE(name);
        std::string error;
        const std::vector<float> samples = Decode(WriteChords(folder, name, encoder), error);
        CHECK(error.empty());
        CHECK(std::abs(static_cast<double>(samples.size() / 2) - 6 * 44100) < 2400);
        // A shift by two samples would leave more than this of the 55 to 440 Hz tones.
        double difference = 0;
        double power = 0;
        for (size_t i = 0; i < std::min(samples.size(), original.size()); ++i) {
            difference += (samples[i] - original[i]) * (samples[i] - original[i]);
            power += original[i] * original[i];
        }
        if (name != "six.flac") // the downmix has a gain of its own
            CHECK(difference < 0.003 * power);
    }
}

TEST_CASE("Tags and cover come with the song, and a song without a title has its file's name")
{
    const TestFolder folder;
    const std::string picture = "\x89PNG\r\n\x1a\n" + std::string(5000, 'x');
    std::string error;
    REQUIRE_MESSAGE(InitializeGStreamer(error), error);
    GstTagList* tags = gst_tag_list_new(GST_TAG_ARTIST, "Émilie", GST_TAG_ALBUM, "Album",
        GST_TAG_TITLE, "Title", GST_TAG_COMMENT, "Notes", GST_TAG_GENRE, "Dub",
        GST_TAG_TRACK_NUMBER, 7, GST_TAG_EXTENDED_COMMENT, "LYRICS=La\nla", nullptr);
    const GstHolder<GstTagList> holder(tags);
    // Each muxer writes one of the two.
    GstDateTime* time = gst_date_time_new_y(1999);
    GDate* date = g_date_new_dmy(31, G_DATE_DECEMBER, 1999);
    GstBuffer* buffer = gst_buffer_new_memdup(picture.data(), picture.size());
    GstCaps* caps = gst_caps_new_empty_simple("image/png");
    GstSample* cover = gst_sample_new(buffer, caps, nullptr, nullptr);
    gst_tag_list_add(tags, GST_TAG_MERGE_APPEND, GST_TAG_DATE_TIME, time, GST_TAG_DATE, date,
        GST_TAG_IMAGE, cover, nullptr);
    gst_sample_unref(cover);
    gst_caps_unref(caps);
    gst_buffer_unref(buffer);
    g_date_free(date);
    gst_date_time_unref(time);

    for (const char* encoder : { Flac, TaggedMp3, Vorbis }) {
        CAPTURE(encoder);
        const std::string path = WriteChords(folder, "My song.x", encoder, tags);
        const auto decoder = SongDecoder::Open(path, error);
        REQUIRE_MESSAGE(decoder, error);
        const TrackTags& read = decoder->Info().tags;
        CHECK(read.artist == "Émilie");
        CHECK(read.album == "Album");
        CHECK(read.title == "Title");
        CHECK(read.year == "1999");
        CHECK(read.notes == "Notes");
        CHECK(read.genre == "Dub");
        CHECK(read.trackNumber == 7);
        if (encoder != TaggedMp3)
            CHECK(read.lyrics == "La\nla");
        REQUIRE(read.cover.size() == picture.size());
        CHECK(std::memcmp(read.cover.data(), picture.data(), picture.size()) == 0);
        CHECK(read.coverType == "image/png");
        CHECK(std::abs(decoder->Info().durationSeconds - 6) < 0.3);
        CHECK(decoder->Info().channels == 2);
        CHECK(decoder->Info().sampleRate == 44100);
    }

    const auto untagged = SongDecoder::Open(WriteChords(folder, "My song.wav", Wav), error);
    REQUIRE(untagged);
    CHECK(untagged->Info().tags.title == "My song");
    CHECK(untagged->Info().tags.cover.empty());
}

TEST_CASE("A cover is a private file in the cache as long as it is needed")
{
    const TestFolder folder;
    const TestVariable cache("XDG_CACHE_HOME", folder.Path("cache").c_str());
    TrackTags tags;
    tags.cover = { 1, 2, 3 };
    for (const auto& [type, ending] : std::map<std::string, std::string> {
             { "image/jpeg", ".jpg" }, { "image/png", ".png" }, { "image/../../x", "" } }) {
        tags.coverType = type;
        std::string path;
        {
            const CoverFile file(tags);
            path = file.Path();
            REQUIRE(path.starts_with(folder.Path("cache/pxvis/cover-")));
            CHECK(path.find('/', folder.Path("cache/pxvis/").size()) == std::string::npos);
            CHECK(path.ends_with(ending));

            struct stat status = {};
            REQUIRE(stat(path.c_str(), &status) == 0);
            CHECK(status.st_size == 3);
            CHECK((status.st_mode & 0777) == 0600);
        }
        CHECK_FALSE(std::filesystem::exists(path));
    }
    folder.Write("blocked", "");
    const TestVariable blocked("XDG_CACHE_HOME", folder.Path("blocked").c_str());
    CHECK(std::filesystem::exists(CoverFile(tags).Path()));
    CHECK(CoverFile({}).Path().empty());
}

TEST_CASE("Covers of processes that were killed go, those in use and other files stay")
{
    const TestFolder folder;
    const TestVariable cache("XDG_CACHE_HOME", folder.Path("cache").c_str());
    TrackTags tags;
    tags.cover = { 1, 2, 3 };
    const CoverFile inUse(tags);
    folder.Write("cache/pxvis/cover-killed.png", "");
    folder.Write("cache/pxvis/cover-young.png", "");
    folder.Write("cache/pxvis/other", "");
    const auto makeOld = [](const std::filesystem::path& path) {
        using Clock = std::filesystem::file_time_type::clock;
        std::filesystem::last_write_time(path, Clock::now() - std::chrono::hours(1));
    };
    for (const char* name : { "cover-killed.png", "other" })
        makeOld(folder.Path("cache/pxvis/") + name);
    makeOld(inUse.Path());
    const CoverFile next(tags);
    CHECK_FALSE(std::filesystem::exists(folder / "cache/pxvis/cover-killed.png"));
    CHECK(std::filesystem::exists(folder / "cache/pxvis/cover-young.png"));
    CHECK(std::filesystem::exists(folder / "cache/pxvis/other"));
    CHECK(std::filesystem::exists(inUse.Path()));
}

TEST_CASE("What is no song gives one clear line and never waits")
{
    const TestFolder folder;
    CHECK(OpenError(folder.Path("missing.mp3")) == "no such file");
    CHECK(OpenError(folder.Path("")) == "is a folder, not a music file");
    REQUIRE(mkfifo(folder.Path("pipe.wav").c_str(), 0600) == 0);
    CHECK(OpenError(folder.Path("pipe.wav")) == "not a regular file");
    folder.Write("empty.mp3", "");
    CHECK(OpenError(folder.Path("empty.mp3")) == "the file is empty");
    folder.Write("text.mp3", "This is no music.\n");
    CHECK(OpenError(folder.Path("text.mp3")) == "not a music file that GStreamer knows");
    std::string noise(100000, '\0');
    uint32_t state = 1;
    for (char& byte : noise)
        byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    folder.Write("noise.mp3", noise);
    OpenError(folder.Path("noise.mp3"));

    const std::string wav = WriteChords(folder, "song.wav", Wav);
    folder.Write("head.wav", folder.Read("song.wav").substr(0, 44));
    CHECK(OpenError(folder.Path("head.wav")) == "holds no sound");
    // A known format that nothing decodes: the WAV header changed to ADPCM's.
    std::string adpcm = folder.Read("song.wav");
    const char format[] = { 0x11, 0, 2, 0, 0x44, '\xAC', 0, 0, 0, '\xAC', 0, 0, 0, 4, 4, 0 };
    adpcm.replace(20, sizeof format, format, sizeof format);
    folder.Write("adpcm.wav", adpcm);
    const std::string fault = OpenError(folder.Path("adpcm.wav"));
    CHECK_MESSAGE(fault.find("ADPCM") != std::string::npos, fault);

    // Lists that point elsewhere are not followed.
    folder.Write("list.m3u", "#EXTM3U\n#EXTINF:1,x\n" + wav + "\n");
    folder.Write("live.m3u8",
        "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:10,\nfile://" + wav + "\n#EXT-X-ENDLIST\n");
    CHECK(OpenError(folder.Path("list.m3u")) == "not a music file that GStreamer knows");
    CHECK(OpenError(folder.Path("live.m3u8")) == "not a music file that GStreamer knows");
}

TEST_CASE("Of a damaged song the rest is heard, and the loss told where the file tells its length")
{
    const auto loss = [](const std::string& path) {
        std::string error;
        const auto decoder = SongDecoder::Open(path, error);
        REQUIRE_MESSAGE(decoder, error);
        float block[2 * 1000];
        while (decoder->Read(block, 1000) > 0) { }
        return decoder->Loss();
    };
    const TestFolder folder;
    for (const char* encoder : { Wav, Flac, Mp3, Vorbis }) {
        CAPTURE(encoder);
        WriteChords(folder, "song", encoder);
        const std::string whole = folder.Read("song");
        folder.Write("cut", whole.substr(0, whole.size() / 2));
        std::string hole = whole;
        std::fill_n(hole.begin() + static_cast<int64_t>(whole.size() / 3), 5000, '\x55');
        folder.Write("hole", hole);
        std::string error;
        const size_t cut = Decode(folder.Path("cut"), error).size() / 2;
        CHECK(cut > 44100);
        CHECK(cut < 5 * 44100);
        CHECK(Decode(folder.Path("hole"), error).size() / 2 > 44100);
        CHECK(loss(folder.Path("song")).empty());
        if (encoder == Flac)
            CHECK(loss(folder.Path("cut")).find("seconds can't be decoded") != std::string::npos);
    }
}
