#include "host/SongDecoder.h"

#include "host/GStreamer.h"
#include "host/StreamTrim.h"
#include "host/TagReader.h"
#include "os/Clock.h"

#include <gst/app/gstappsink.h>
#include <gst/audio/audio.h>
#include <gst/pbutils/missing-plugins.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iomanip>
#include <locale>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace pxvis::host {

namespace {

constexpr GstClockTime PollTime = 20 * GST_MSECOND;
constexpr int BytesPerFrame = 2 * sizeof(float);
constexpr guint QueueBuffers = 32; // decoded ahead, some 3 s at the usual sizes

// The first sound stream is the song.
void LinkSound(GstElement*, GstPad* pad, void* converter)
{
    const GstHolder<GstPad> sink(
        gst_element_get_static_pad(static_cast<GstElement*>(converter), "sink"));
    if (!gst_pad_is_linked(sink.get()))
        gst_pad_link(pad, sink.get());
}

void CheckForSound(GstElement* decoder, void* converter)
{
    const GstHolder<GstPad> sink(
        gst_element_get_static_pad(static_cast<GstElement*>(converter), "sink"));
    if (gst_pad_is_linked(sink.get()))
        return;
    gst_element_post_message(decoder,
        gst_message_new_application(GST_OBJECT(decoder), gst_structure_new_empty("no-sound")));
}

// Empty when the path names a regular file that may be read.
std::string FileFault(const std::string& path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        return errno == ENOENT ? "no such file" : std::strerror(errno);
    if (S_ISDIR(status.st_mode))
        return "is a folder, not a music file";
    if (!S_ISREG(status.st_mode))
        return "not a regular file";
    if (access(path.c_str(), R_OK) != 0)
        return std::strerror(errno);
    if (status.st_size == 0)
        return "the file is empty";
    return {};
}

}

struct SongDecoder::Pipeline
{
    std::string path;
    std::string error;
    SongInfo info;
    std::string missingPlugin;

    GstHolder<GstElement> pipeline;
    GstHolder<GstBus> bus;
    GstElement* converter = nullptr; // both owned by the pipeline
    GstElement* sink = nullptr;
    bool ended = false;
    bool stalled = false;
    std::atomic<bool> hasStreams = false; // a file of known form; set on its threads
    StreamTrim trim;
    int64_t framesToDrop = 0;
    int64_t framesLeft = INT64_MAX;
    int64_t framesRead = 0;
    bool lengthIsTold = false; // info.durationSeconds is no estimate

    GstHolder<GstSample> sample; // being read
    size_t sampleOffset = 0;

    ~Pipeline();
    static void Close(std::unique_ptr<Pipeline> pipeline);
    size_t Read(float* interleaved, size_t frames);
    bool Clip();
    bool Start();
    bool NextSample();
    void ReadMessages();
    void TakeError(GstMessage* message);
    void TakeFormat();
    void Fail(const std::string& reason);
};

SongDecoder::Pipeline::~Pipeline()
{
    sample.reset();
    if (pipeline)
        gst_element_set_state(pipeline.get(), GST_STATE_NULL);
}

// A plug-in that hangs would hang the shutdown too: its threads, and all they use, are given up.
void SongDecoder::Pipeline::Close(std::unique_ptr<Pipeline> pipeline)
{
    if (pipeline && pipeline->stalled)
        static_cast<void>(pipeline.release());
}

void SongDecoder::Pipeline::Fail(const std::string& reason)
{
    if (error.empty())
        error = path + ": " + reason;
}

bool SongDecoder::Pipeline::Start()
{
    GstElement* source = gst_element_factory_make("filesrc", nullptr);
    GstElement* decoder = gst_element_factory_make("decodebin", nullptr);
    converter = gst_element_factory_make("audioconvert", nullptr);
    GstElement* resampler = gst_element_factory_make("audioresample", nullptr);
    sink = gst_element_factory_make("appsink", nullptr);
    pipeline.reset(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    bool complete = true;
    for (GstElement* element : { source, decoder, converter, resampler, sink }) {
        if (element)
            gst_bin_add(GST_BIN(pipeline.get()), element);
        else
            complete = false;
    }
    if (!complete) {
        Fail("GStreamer's base plug-ins are not installed");
        return false;
    }
    bus.reset(gst_element_get_bus(pipeline.get()));

    const GstHolder<GstCaps> sound(gst_caps_new_empty_simple("audio/x-raw"));
    g_object_set(source, "location", path.c_str(), nullptr);
    g_object_set(decoder, "caps", sound.get(), "expose-all-streams", FALSE, nullptr);
    WatchForMp3(pipeline.get(), trim);
    g_signal_connect(decoder, "autoplug-select", G_CALLBACK(SelectForSound), &hasStreams);
    g_signal_connect(decoder, "pad-added", G_CALLBACK(LinkSound), converter);
    g_signal_connect(decoder, "no-more-pads", G_CALLBACK(CheckForSound), converter);

    const GstHolder<GstCaps> wanted(gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING,
        GST_AUDIO_NE(F32), "layout", G_TYPE_STRING, "interleaved", "rate", G_TYPE_INT, SampleRate,
        "channels", G_TYPE_INT, 2, "channel-mask", GST_TYPE_BITMASK, guint64 { 3 }, nullptr));
    g_object_set(sink, "caps", wanted.get(), "sync", FALSE, "max-buffers", QueueBuffers,
        "wait-on-eos", FALSE, nullptr);
    gst_element_link(source, decoder);
    gst_element_link_many(converter, resampler, sink, nullptr);
    gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);

    if (!NextSample()) {
        Fail("holds no sound");
        return false;
    }
    ReadMessages();
    TakeFormat();
    if (info.tags.title.empty())
        info.tags.title = std::filesystem::path(path).stem();
    return true;
}

void SongDecoder::Pipeline::TakeFormat()
{
    gint64 duration = 0;
    if (gst_element_query_duration(pipeline.get(), GST_FORMAT_TIME, &duration) && duration > 0)
        info.durationSeconds = static_cast<double>(duration) / GST_SECOND;
    lengthIsTold = info.durationSeconds > 0
        && (trim.inContainer || !trim.lengthIsGuessed || trim.mp3.isHeaderFrame);
    const GstHolder<GstPad> pad(gst_element_get_static_pad(converter, "sink"));
    const GstHolder<GstCaps> caps(gst_pad_get_current_caps(pad.get()));
    GstAudioInfo format;
    if (caps && gst_audio_info_from_caps(&format, caps.get())) {
        info.channels = GST_AUDIO_INFO_CHANNELS(&format);
        info.sampleRate = GST_AUDIO_INFO_RATE(&format);
    }

    struct stat status = {};
    if (info.durationSeconds == 0 && info.bitRate > 0 && stat(path.c_str(), &status) == 0)
        info.durationSeconds = static_cast<double>(status.st_size) * 8 / info.bitRate;
    if (info.sampleRate > 0 && !trim.inContainer && trim.mp3.isLayer3) {
        framesToDrop = int64_t { trim.mp3.start } * SampleRate / info.sampleRate;
        if (trim.mp3.length >= 0) {
            framesLeft = trim.mp3.length * SampleRate / info.sampleRate;
            info.durationSeconds = static_cast<double>(framesLeft) / SampleRate;
            lengthIsTold = true;
        }
    }
}

void SongDecoder::Pipeline::TakeError(GstMessage* message)
{
    GError* fault = nullptr;
    gst_message_parse_error(message, &fault, nullptr);
    const GstHolder<GError> holder(fault);
    if (!missingPlugin.empty())
        Fail("GStreamer has no plug-in for it: " + missingPlugin);
    else if (g_error_matches(fault, GST_STREAM_ERROR, GST_STREAM_ERROR_TYPE_NOT_FOUND)
        || g_error_matches(fault, GST_STREAM_ERROR, GST_STREAM_ERROR_WRONG_TYPE)
        || g_error_matches(fault, GST_STREAM_ERROR, GST_STREAM_ERROR_CODEC_NOT_FOUND)
        || g_error_matches(fault, GST_CORE_ERROR, GST_CORE_ERROR_MISSING_PLUGIN))
        Fail(hasStreams ? "holds no sound" : "not a music file that GStreamer knows");
    else
        Fail("cannot be decoded: " + OneLine(fault->message));
}

void SongDecoder::Pipeline::ReadMessages()
{
    while (GstMessage* raw = gst_bus_pop(bus.get())) {
        const GstHolder<GstMessage> message(raw);
        switch (GST_MESSAGE_TYPE(raw)) {
        case GST_MESSAGE_TAG: {
            GstTagList* tags = nullptr;
            gst_message_parse_tag(raw, &tags);
            const GstHolder<GstTagList> holder(tags);
            MergeTags(tags, info);
            break;
        }
        case GST_MESSAGE_ELEMENT:
            if (gst_is_missing_plugin_message(raw)) {
                const std::string plugin = MissingPlugin(raw);
                if (!plugin.empty())
                    missingPlugin = plugin;
            }
            break;
        case GST_MESSAGE_APPLICATION:
            if (!missingPlugin.empty())
                Fail("GStreamer has no plug-in for it: " + missingPlugin);
            else
                Fail("holds no sound");
            break;
        case GST_MESSAGE_ERROR:
            TakeError(raw);
            break;
        default:
            break;
        }
    }
}

// The next stretch of samples in `sample`; false at the end.
bool SongDecoder::Pipeline::NextSample()
{
    sample.reset();
    sampleOffset = 0;
    const int64_t start = os::MonotonicNanoseconds();
    while (!ended) {
        ReadMessages();
        // What was decoded before a fault is still the song.
        sample.reset(
            gst_app_sink_try_pull_sample(GST_APP_SINK(sink), error.empty() ? PollTime : 0));
        if (sample && Clip())
            return true;
        if (sample)
            continue;
        if (!error.empty() || gst_app_sink_is_eos(GST_APP_SINK(sink))) {
            ReadMessages();
            ended = true;
        } else if (os::MonotonicNanoseconds() - start > int64_t { StallSeconds } * 1'000'000'000) {
            Fail("decoding stands still");
            ended = true;
            stalled = true;
        }
    }
    return false;
}

// Takes away what lies outside the file's own edit of the song; false when nothing is left.
bool SongDecoder::Pipeline::Clip()
{
    GstBuffer* buffer = gst_sample_get_buffer(sample.get());
    GstSegment* segment = gst_sample_get_segment(sample.get());
    if (!buffer)
        return false;
    if (!segment || segment->format != GST_FORMAT_TIME || !GST_BUFFER_PTS_IS_VALID(buffer))
        return true;
    GstBuffer* clipped
        = gst_audio_buffer_clip(gst_buffer_ref(buffer), segment, SampleRate, BytesPerFrame);
    if (!clipped)
        return false;
    const GstHolder<GstBuffer> holder(clipped);
    sample.reset(gst_sample_new(clipped, gst_sample_get_caps(sample.get()), segment, nullptr));
    return true;
}

size_t SongDecoder::Pipeline::Read(float* interleaved, size_t frames)
{
    frames = static_cast<size_t>(std::min<int64_t>(static_cast<int64_t>(frames), framesLeft));
    size_t done = 0;
    while (done < frames && (sample || NextSample())) {
        GstBuffer* buffer = gst_sample_get_buffer(sample.get());
        const size_t size = gst_buffer_get_size(buffer);
        const size_t dropped = static_cast<size_t>(
            std::min(framesToDrop, static_cast<int64_t>((size - sampleOffset) / BytesPerFrame)));
        framesToDrop -= static_cast<int64_t>(dropped);
        sampleOffset += dropped * BytesPerFrame;
        const size_t copied = gst_buffer_extract(
            buffer, sampleOffset, interleaved + 2 * done, (frames - done) * BytesPerFrame);
        sampleOffset += copied;
        done += copied / BytesPerFrame;
        if (sampleOffset + BytesPerFrame > size)
            sample.reset();
    }
    framesLeft -= static_cast<int64_t>(done);
    framesRead += static_cast<int64_t>(done);
    return done;
}

std::unique_ptr<SongDecoder> SongDecoder::Open(const std::string& path, std::string& error)
{
    error.clear();
    if (!InitializeGStreamer(error))
        return nullptr;
    const std::string fault = FileFault(path);
    if (!fault.empty()) {
        error = path + ": " + fault;
        return nullptr;
    }
    auto pipeline = std::make_unique<Pipeline>();
    pipeline->path = path;
    if (!pipeline->Start()) {
        error = pipeline->error;
        Pipeline::Close(std::move(pipeline));
        return nullptr;
    }
    return std::unique_ptr<SongDecoder>(new SongDecoder(std::move(pipeline)));
}

SongDecoder::SongDecoder(std::unique_ptr<Pipeline> pipeline)
    : m_pipeline(std::move(pipeline))
{
}

SongDecoder::~SongDecoder()
{
    Pipeline::Close(std::move(m_pipeline));
}

size_t SongDecoder::Read(float* interleaved, size_t frames)
{
    return m_pipeline->Read(interleaved, frames);
}

std::string SongDecoder::Error() const
{
    return m_pipeline->error;
}

std::string SongDecoder::Loss() const
{
    if (!m_pipeline->error.empty())
        return m_pipeline->error;
    // Encoders' run-up and filling are counted in by some files.
    constexpr double tolerance = 0.25;
    const double told = m_pipeline->info.durationSeconds;
    const double missing = told - static_cast<double>(m_pipeline->framesRead) / SampleRate;
    if (!m_pipeline->lengthIsTold || missing < tolerance)
        return {};
    std::ostringstream line;
    line.imbue(std::locale::classic());
    line << std::fixed << std::setprecision(1) << m_pipeline->path << ": " << missing << " of its "
         << told << " seconds can't be decoded";
    return line.str();
}

const SongInfo& SongDecoder::Info() const
{
    return m_pipeline->info;
}

}
