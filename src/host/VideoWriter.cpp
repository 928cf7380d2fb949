#include "host/VideoWriter.h"

#include "host/GStreamer.h"
#include "host/Mp4Timing.h"
#include "host/OpusStream.h"
#include "host/OutputFile.h"
#include "host/PictureCoding.h"
#include "host/SoundCopy.h"
#include "host/TagWriter.h"
#include "kernels/I420FromPixels.h"
#include "os/Clock.h"

#include <fcntl.h>
#include <gst/app/gstappsrc.h>
#include <gst/video/video.h>
#include <stdlib.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <utility>
#include <vector>

namespace pxvis::host {

namespace {

constexpr int64_t Second = 1'000'000'000;
constexpr GstClockTime PollTime = 2 * GST_MSECOND;

// Pictures that may wait for the encoder; small ones need more of them to bridge a poll.
constexpr guint64 WaitingPictures = 3;
constexpr guint64 WaitingBytes = guint64 { 4 } << 20;

// avenc_aac puts one block before the sound (AAC's transform needs it).
constexpr uint32_t AacSkip = 1024;

std::string SettingsFault(const EncodeSettings& settings)
{
    const auto side = [](int n) {
        return n >= EncodeSettings::SideLeast && n <= EncodeSettings::SideLimit && n % 2 == 0;
    };
    if (!side(settings.width) || !side(settings.height))
        return "width and height of a video are even numbers from 16 to 16384";
    if (int64_t { settings.width } * settings.height > EncodeSettings::PixelLimit)
        return "a video has at most 64 megapixels";
    const int64_t numerator = settings.rateNumerator;
    const int64_t denominator = settings.rateDenominator;
    if (numerator < 1 || denominator < 1 || numerator > 1000 * denominator
        || numerator * 60 < denominator)
        return "a video has from 1/60 to 1000 pictures a second";
    if (settings.sound == SoundCoding::Copy && settings.songPath.empty())
        return "there is no song whose sound could be copied";
    if (settings.container == VideoContainer::WebM && settings.sound != SoundCoding::Opus)
        return "a WebM file takes its sound as opus only";
    if (!(settings.songStart >= 0 && settings.songStart < 1e9))
        return "a copy of the sound begins within the song";
    return {};
}

// The muxer does not say why it can't write.
bool DiskIsFull(int descriptor)
{
    struct statvfs disk = {};
    return fstatvfs(descriptor, &disk) == 0 && disk.f_bavail * disk.f_frsize < 1 << 20;
}

// A file without a name beside the output: the muxer keeps the pictures there until it knows the
// index that goes before them. -1 when there is none; the muxer then takes one of its own.
int OpenScratch(const std::string& path)
{
    std::string name = path + ".XXXXXX";
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor >= 0)
        unlink(name.c_str());
    return descriptor;
}

}

struct VideoWriter::Pipeline
{
    EncodeSettings settings;
    std::string path;
    std::string error;
    std::unique_ptr<OutputFile> file;
    int scratch = -1;
    WebmTags webmTags;

    GstHolder<GstElement> pipeline;
    GstHolder<GstBus> bus;
    GstElement* pictures = nullptr; // all owned by the pipeline
    GstElement* sound = nullptr; // null when the sound is copied
    std::unique_ptr<SoundCopy> copy; // null when it is encoded
    GstElement* muxer = nullptr;
    GstVideoInfo format = {}; // of the pictures
    GstBufferPool* pool = nullptr;
    GstHolder<GstPad> soundPad; // the muxer's
    bool ended = false;

    uint64_t pictureCount = 0;
    uint64_t soundFrames = 0;
    uint64_t encodedFrames = 0; // of the sound
    std::vector<float> waitingSound; // interleaved; of pictures to come

    ~Pipeline();
    bool Fail(const std::string& reason);
    GstElement* Add(const char* factory, const char* package);
    bool Link(std::initializer_list<GstElement*> elements);
    bool LinkToMuxer(GstElement* last, const char* pad, GstHolder<GstPad>* kept);
    bool Build();
    bool BuildPictures();
    bool BuildPool();
    void StorePicture(uint8_t* target, const uint32_t* topRow, ptrdiff_t pitch) const;
    bool BuildSound();
    bool BuildCopy();
    void SetTags();
    bool PushSound(uint64_t until);
    uint64_t SoundOf(uint64_t pictures) const;
    bool ReadMessages(GstClockTime wait);
    bool WaitForRoom();
    bool Drain();
    Mp4SoundTiming SoundTiming() const;
    void Stop();
};

VideoWriter::Pipeline::~Pipeline()
{
    Stop();
    if (scratch >= 0)
        close(scratch);
}

bool VideoWriter::Pipeline::Fail(const std::string& reason)
{
    if (error.empty())
        error = path + ": " + reason;
    return false;
}

GstElement* VideoWriter::Pipeline::Add(const char* factory, const char* package)
{
    GstElement* element = gst_element_factory_make(factory, nullptr);
    if (!element) {
        Fail(std::string("GStreamer has no ") + factory + "; the package " + package + " holds it");
        return nullptr;
    }
    gst_bin_add(GST_BIN(pipeline.get()), element);
    return element;
}

bool VideoWriter::Pipeline::Link(std::initializer_list<GstElement*> elements)
{
    GstElement* before = nullptr;
    for (GstElement* element : elements) {
        if (!element || (before && !gst_element_link(before, element)))
            return Fail("the encoder's parts do not fit together");
        before = element;
    }
    return true;
}

bool VideoWriter::Pipeline::LinkToMuxer(GstElement* last, const char* pad, GstHolder<GstPad>* kept)
{
    // Encoded data is small: a queue without bounds lets neither stream wait for the other.
    GstElement* queue = Add("queue", "libgstreamer1.0-0");
    if (!queue || !last)
        return false;
    g_object_set(
        queue, "max-size-buffers", 0, "max-size-bytes", 0, "max-size-time", guint64 { 0 }, nullptr);
    GstHolder<GstPad> sink(gst_element_request_pad_simple(muxer, pad));
    const GstHolder<GstPad> source(gst_element_get_static_pad(queue, "src"));
    if (!gst_element_link(last, queue) || !sink
        || gst_pad_link(source.get(), sink.get()) != GST_PAD_LINK_OK)
        return Fail("the encoder's parts do not fit together");
    if (kept)
        *kept = std::move(sink);
    return true;
}

// I420, since left to itself the encoder would take 4:4:4, which few players show.
bool VideoWriter::Pipeline::BuildPool()
{
    gst_video_info_set_format(&format, GST_VIDEO_FORMAT_I420, static_cast<guint>(settings.width),
        static_cast<guint>(settings.height));
    format.fps_n = settings.rateNumerator;
    format.fps_d = settings.rateDenominator;
    gst_video_colorimetry_from_string(&format.colorimetry, GST_VIDEO_COLORIMETRY_BT709);
    format.chroma_site = GST_VIDEO_CHROMA_SITE_MPEG2;
    const GstHolder<GstCaps> caps(gst_video_info_to_caps(&format));
    g_object_set(pictures, "caps", caps.get(), nullptr);
    pool = gst_buffer_pool_new();
    GstStructure* config = gst_buffer_pool_get_config(pool);
    gst_buffer_pool_config_set_params(config, caps.get(), static_cast<guint>(format.size), 0, 0);
    return (gst_buffer_pool_set_config(pool, config) && gst_buffer_pool_set_active(pool, TRUE))
        || Fail("there is no memory for its pictures");
}

bool VideoWriter::Pipeline::BuildPictures()
{
    pictures = Add("appsrc", "gstreamer1.0-plugins-base");
    const PictureCoding coding = PictureCodingOf(settings.container);
    GstElement* encoder = Add(coding.encoder, coding.package);
    GstElement* profile = Add("capsfilter", "libgstreamer1.0-0");
    if (!error.empty())
        return false;
    g_object_set(pictures, "format", GST_FORMAT_TIME, "max-bytes", guint64 { 0 }, nullptr);
    gst_util_set_object_arg(G_OBJECT(profile), "caps", coding.caps);
    SetUpPictureEncoder(encoder, settings);
    return BuildPool() && Link({ pictures, encoder, profile })
        && LinkToMuxer(profile, "video_%u", nullptr);
}

// Two rows at a time, which share their chroma.
void VideoWriter::Pipeline::StorePicture(
    uint8_t* target, const uint32_t* topRow, ptrdiff_t pitch) const
{
    uint8_t* const luma = target + format.offset[0];
    const ptrdiff_t lumaStride = format.stride[0];
    for (ptrdiff_t y = 0; y < settings.height; y += 2) {
        const kernels::I420Rows rows { luma + y * lumaStride, luma + (y + 1) * lumaStride,
            target + format.offset[1] + y / 2 * format.stride[1],
            target + format.offset[2] + y / 2 * format.stride[2] };
        kernels::I420FromPixels(rows, topRow + y * pitch, topRow + (y + 1) * pitch, settings.width);
    }
}

bool VideoWriter::Pipeline::BuildSound()
{
    const bool opus = settings.sound == SoundCoding::Opus;
    sound = Add("appsrc", "gstreamer1.0-plugins-base");
    GstElement* convert = Add("audioconvert", "gstreamer1.0-plugins-base");
    GstElement* resample = Add("audioresample", "gstreamer1.0-plugins-base");
    GstElement* encoder = opus ? Add("opusenc", "gstreamer1.0-plugins-base")
                               : Add("avenc_aac", "gstreamer1.0-libav");
    if (!error.empty())
        return false;
    const GstHolder<GstCaps> caps(gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING,
        std::endian::native == std::endian::little ? "F32LE" : "F32BE", "layout", G_TYPE_STRING,
        "interleaved", "rate", G_TYPE_INT, SampleRate, "channels", G_TYPE_INT, 2, nullptr));
    g_object_set(
        sound, "format", GST_FORMAT_TIME, "max-bytes", guint64 { 0 }, "caps", caps.get(), nullptr);
    g_object_set(resample, "quality", 9, nullptr);
    g_object_set(encoder, "bitrate", opus ? 192000 : 256000, nullptr);
    if (!opus && settings.level == EncodeLevel::Draft)
        gst_util_set_object_arg(G_OBJECT(encoder), "aac-coder", "fast");
    return Link({ sound, convert, resample, encoder })
        && LinkToMuxer(encoder, "audio_%u", &soundPad);
}

bool VideoWriter::Pipeline::BuildCopy()
{
    soundPad.reset(gst_element_request_pad_simple(muxer, "audio_%u"));
    copy = std::make_unique<SoundCopy>();
    std::string fault;
    return copy->Build(GST_BIN(pipeline.get()), soundPad.get(), settings.songPath,
               static_cast<GstClockTime>(settings.songStart * Second), fault)
        || Fail(fault);
}

void VideoWriter::Pipeline::SetTags()
{
    GstTagSetter* setter = GST_TAG_SETTER(muxer);
    const TrackTags& tags = settings.tags;
    const bool mp4 = settings.container == VideoContainer::Mp4;
    const auto set = [&](const char* tag, GValue value, const std::string& plain) {
        if (mp4)
            gst_tag_setter_add_tag_value(setter, GST_TAG_MERGE_REPLACE, tag, &value);
        else
            webmTags.Set(setter, tag, &value, plain);
        g_value_unset(&value);
    };
    const std::pair<const char*, const std::string&> texts[] = { { GST_TAG_TITLE, tags.title },
        { GST_TAG_ARTIST, tags.artist }, { GST_TAG_ALBUM, tags.album } };
    for (const auto& [tag, text] : texts) {
        if (text.empty() || !g_utf8_validate(text.c_str(), -1, nullptr))
            continue;
        GValue value = G_VALUE_INIT;
        g_value_init(&value, G_TYPE_STRING);
        g_value_set_string(&value, text.c_str());
        set(tag, value, text);
    }
    guint year = 0;
    std::from_chars(tags.year.data(), tags.year.data() + tags.year.size(), year);
    if (year >= 1 && year <= 9999 && mp4) {
        SetMp4Year(setter, std::to_string(year));
    } else if (year >= 1 && year <= 9999) {
        GValue value = G_VALUE_INIT;
        g_value_init(&value, G_TYPE_DATE);
        g_value_take_boxed(&value, g_date_new_dmy(1, G_DATE_JANUARY, static_cast<GDateYear>(year)));
        set(GST_TAG_DATE, value, std::to_string(year));
    }
    if (!mp4) {
        const GstHolder<GstPad> source(gst_element_get_static_pad(muxer, "src"));
        webmTags.Watch(source.get());
    }
    const bool jpeg = tags.coverType == "image/jpeg" || tags.coverType == "image/jpg";
    if (tags.cover.empty() || !mp4 || (!jpeg && tags.coverType != "image/png"))
        return;
    const GstHolder<GstBuffer> bytes(gst_buffer_new_memdup(tags.cover.data(), tags.cover.size()));
    const GstHolder<GstCaps> caps(gst_caps_new_empty_simple(jpeg ? "image/jpeg" : "image/png"));
    const GstHolder<GstSample> cover(gst_sample_new(bytes.get(), caps.get(), nullptr, nullptr));
    gst_tag_setter_add_tags(setter, GST_TAG_MERGE_REPLACE, GST_TAG_IMAGE, cover.get(), nullptr);
}

bool VideoWriter::Pipeline::Build()
{
    pipeline.reset(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    bus.reset(gst_element_get_bus(pipeline.get()));
    const bool mp4 = settings.container == VideoContainer::Mp4;
    muxer = Add(mp4 ? "mp4mux" : "webmmux", "gstreamer1.0-plugins-good");
    GstElement* sink = Add("fdsink", "libgstreamer1.0-0");
    if (!error.empty() || !Link({ muxer, sink }) || !BuildPictures()
        || !(settings.sound == SoundCoding::Copy ? BuildCopy() : BuildSound()))
        return false;

    g_object_set(sink, "fd", file->Descriptor(), "sync", FALSE, nullptr);
    if (mp4) {
        g_object_set(muxer, "faststart", TRUE, nullptr);
        scratch = OpenScratch(path);
        const std::string scratchPath = "/proc/self/fd/" + std::to_string(scratch);
        if (scratch >= 0 && access(scratchPath.c_str(), R_OK | W_OK) == 0)
            g_object_set(muxer, "faststart-file", scratchPath.c_str(), nullptr);
    }
    SetTags();
    if (gst_element_set_state(pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
        ReadMessages(GST_SECOND);
        return Fail("the encoder does not start");
    }
    std::string fault;
    return !copy || copy->WaitForSound(bus.get(), fault) || Fail(fault);
}

// Waits for news of that length at most; false after an error.
bool VideoWriter::Pipeline::ReadMessages(GstClockTime wait)
{
    const auto wanted = static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_EOS);
    while (GstMessage* popped = gst_bus_timed_pop_filtered(bus.get(), wait, wanted)) {
        const GstHolder<GstMessage> message(popped);
        wait = 0;
        if (GST_MESSAGE_TYPE(popped) == GST_MESSAGE_EOS) {
            ended = true;
            continue;
        }
        GError* raw = nullptr;
        gst_message_parse_error(popped, &raw, nullptr);
        const GstHolder<GError> failure(raw);
        if (g_error_matches(raw, GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_NO_SPACE_LEFT)
            || DiskIsFull(file->Descriptor()))
            Fail("no space left on the disk");
        else
            Fail(OneLine(raw ? raw->message : "the encoder failed"));
    }
    return error.empty();
}

// Samples up to the end of the last of so many pictures.
uint64_t VideoWriter::Pipeline::SoundOf(uint64_t pictures) const
{
    return gst_util_uint64_scale_round(pictures,
        static_cast<guint64>(settings.rateDenominator) * SampleRate,
        static_cast<guint64>(settings.rateNumerator));
}

// Analysis hears ahead, and a video may stop early: sound goes to the encoder with its pictures, so
// that the file holds no more of it.
bool VideoWriter::Pipeline::PushSound(uint64_t until)
{
    const uint64_t end = std::min(until, soundFrames);
    if (!sound || end <= encodedFrames)
        return true;
    const size_t samples = static_cast<size_t>(end - encodedFrames) * 2;
    GstBuffer* buffer = gst_buffer_new_memdup(waitingSound.data(), samples * sizeof(float));
    waitingSound.erase(
        waitingSound.begin(), waitingSound.begin() + static_cast<ptrdiff_t>(samples));
    GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(encodedFrames, GST_SECOND, SampleRate);
    GST_BUFFER_DURATION(buffer)
        = gst_util_uint64_scale(end, GST_SECOND, SampleRate) - GST_BUFFER_PTS(buffer);
    encodedFrames = end;
    if (gst_app_src_push_buffer(GST_APP_SRC(sound), buffer) == GST_FLOW_OK)
        return true;
    ReadMessages(GST_SECOND);
    return Fail("the encoder takes no more sound");
}

bool VideoWriter::Pipeline::WaitForRoom()
{
    // The source's own blocking would never end when the encoder fails.
    const guint64 picture = format.size;
    const guint64 most = std::max(WaitingPictures * picture, WaitingBytes);
    guint64 before = G_MAXUINT64;
    int64_t deadline = 0;
    for (GstClockTime wait = 0;; wait = PollTime) {
        if (!ReadMessages(wait))
            return false;
        const guint64 level = gst_app_src_get_current_level_bytes(GST_APP_SRC(pictures));
        if (level + picture <= most)
            return true;
        const int64_t now = os::MonotonicNanoseconds();
        if (level != before)
            deadline = now + StallSeconds * Second;
        else if (now > deadline)
            return Fail("the encoder takes no more pictures");
        before = level;
    }
}

// Until the end has gone through the encoders to the file.
bool VideoWriter::Pipeline::Drain()
{
    gst_app_src_end_of_stream(GST_APP_SRC(pictures));
    if (sound)
        gst_app_src_end_of_stream(GST_APP_SRC(sound));
    else
        copy->EndAfter(gst_util_uint64_scale(soundFrames, GST_SECOND, SampleRate));
    int64_t deadline = 0;
    off_t before = -1;
    while (!ended) {
        if (!ReadMessages(100 * GST_MSECOND))
            return false;
        const off_t size = lseek(file->Descriptor(), 0, SEEK_CUR)
            + (scratch >= 0 ? lseek(scratch, 0, SEEK_END) : 0);
        const int64_t now = os::MonotonicNanoseconds();
        if (size != before)
            deadline = now + StallSeconds * Second;
        else if (now > deadline)
            return Fail("the encoder does not come to an end");
        before = size;
    }
    return true;
}

Mp4SoundTiming VideoWriter::Pipeline::SoundTiming() const
{
    const GstHolder<GstCaps> caps(gst_pad_get_current_caps(soundPad.get()));
    const GstStructure* structure = caps ? gst_caps_get_structure(caps.get(), 0) : nullptr;
    Mp4SoundTiming timing;
    timing.opus = structure && gst_structure_has_name(structure, "audio/x-opus");
    int rate = SampleRate;
    if (structure)
        gst_structure_get_int(structure, "rate", &rate);
    timing.rate = timing.opus ? OpusRate : static_cast<uint32_t>(std::max(rate, 1));
    timing.length = gst_util_uint64_scale_round(
        std::min(soundFrames, SoundOf(pictureCount)), timing.rate, SampleRate);
    if (copy)
        timing.skip = copy->Skip(timing.rate);
    else
        timing.skip = timing.opus ? OpusSkip(caps.get()).value_or(OpusUsualSkip) : AacSkip;
    return timing;
}

void VideoWriter::Pipeline::Stop()
{
    if (pipeline)
        gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    if (pool) {
        gst_buffer_pool_set_active(pool, FALSE);
        gst_object_unref(std::exchange(pool, nullptr));
    }
}

std::unique_ptr<VideoWriter> VideoWriter::Open(
    const std::string& path, const EncodeSettings& settings, std::string& error)
{
    error.clear();
    auto pipeline = std::make_unique<Pipeline>();
    pipeline->path = path;
    pipeline->settings = settings;
    pipeline->settings.threads = std::clamp(settings.threads, 0, 128);
    const std::string fault = SettingsFault(settings);
    if (!fault.empty()) {
        error = path + ": " + fault;
        return nullptr;
    }
    if (!InitializeGStreamer(error))
        return nullptr;
    pipeline->file = OutputFile::Open(path, settings.replace, error);
    if (!pipeline->file)
        return nullptr;
    if (!pipeline->Build()) {
        error = pipeline->error;
        pipeline->Stop();
        return nullptr;
    }
    return std::unique_ptr<VideoWriter>(new VideoWriter(std::move(pipeline)));
}

VideoWriter::VideoWriter(std::unique_ptr<Pipeline> pipeline)
    : m_pipeline(std::move(pipeline))
{
}

VideoWriter::~VideoWriter()
{
    Abort();
}

bool VideoWriter::AddSound(const float* interleaved, size_t frames)
{
    Pipeline& p = *m_pipeline;
    if (!p.file || !p.ReadMessages(0))
        return false;
    if (frames == 0)
        return true;
    p.soundFrames += frames;
    if (!p.sound)
        return true;
    p.waitingSound.insert(p.waitingSound.end(), interleaved, interleaved + frames * 2);
    return true;
}

bool VideoWriter::AddPicture(const uint32_t* topRow, ptrdiff_t pitch)
{
    Pipeline& p = *m_pipeline;
    if (!p.file || !p.PushSound(p.SoundOf(p.pictureCount + 1)) || !p.WaitForRoom())
        return false;
    GstBuffer* buffer = nullptr;
    GstMapInfo map;
    if (gst_buffer_pool_acquire_buffer(p.pool, &buffer, nullptr) != GST_FLOW_OK)
        return p.Fail("there is no memory for its pictures");
    if (!gst_buffer_map(buffer, &map, GST_MAP_WRITE)) {
        gst_buffer_unref(buffer);
        return p.Fail("there is no memory for its pictures");
    }
    p.StorePicture(map.data, topRow, pitch);
    gst_buffer_unmap(buffer, &map);

    const guint64 scale = static_cast<guint64>(p.settings.rateDenominator) * GST_SECOND;
    const auto rate = static_cast<guint64>(p.settings.rateNumerator);
    GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(p.pictureCount, scale, rate);
    ++p.pictureCount;
    GST_BUFFER_DURATION(buffer)
        = gst_util_uint64_scale(p.pictureCount, scale, rate) - GST_BUFFER_PTS(buffer);
    if (gst_app_src_push_buffer(GST_APP_SRC(p.pictures), buffer) == GST_FLOW_OK)
        return true;
    p.ReadMessages(GST_SECOND);
    return p.Fail("the encoder takes no more pictures");
}

bool VideoWriter::Finish()
{
    Pipeline& p = *m_pipeline;
    if (!p.file)
        return false;
    if (p.pictureCount == 0 || p.soundFrames == 0)
        p.Fail("there is nothing to write");
    std::string fault;
    const bool drained = p.ReadMessages(0) && p.Drain();
    const Mp4SoundTiming timing = drained ? p.SoundTiming() : Mp4SoundTiming();
    p.Stop();
    if (drained && p.settings.container == VideoContainer::Mp4
        && !WriteMp4SoundTiming(p.file->Descriptor(), timing, fault))
        p.Fail(fault);
    if (p.error.empty() && !p.file->Commit(p.error))
        p.file.reset();
    const bool whole = p.error.empty();
    p.file.reset();
    return whole;
}

void VideoWriter::Abort()
{
    m_pipeline->Stop();
    m_pipeline->file.reset();
}

uint64_t VideoWriter::PictureCount() const
{
    return m_pipeline->pictureCount;
}

const std::string& VideoWriter::UnfinishedPath() const
{
    return m_pipeline->file->PartPath();
}

const std::string& VideoWriter::Error() const
{
    return m_pipeline->error;
}

}
