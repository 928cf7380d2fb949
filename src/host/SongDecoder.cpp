#include "host/SongDecoder.h"

#include "host/GStreamer.h"
#include "host/TagReader.h"
#include "os/Clock.h"

#include <gst/app/gstappsink.h>
#include <gst/audio/audio.h>
#include <gst/pbutils/missing-plugins.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace pxvis::host {

namespace {

constexpr GstClockTime PollTime = 20 * GST_MSECOND;
constexpr int BytesPerFrame = 2 * sizeof(float);
constexpr guint QueueBuffers = 32; // decoded ahead, some 3 s at the usual sizes

bool HasClass(GstElementFactory* factory, const char* word)
{
    const char* classes = gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_KLASS);
    return classes && std::strstr(classes, word);
}

// Leaves out what has nothing to do with sound, such as a cover's decoder, and whatever would
// follow an address in the file to another place.
int SelectPlugin(GstElement*, GstPad*, GstCaps*, GstElementFactory* factory, void*)
{
    enum
    {
        Try,
        Expose,
        Skip
    };

    if (HasClass(factory, "Adaptive") || HasClass(factory, "Subtitle"))
        return Skip;
    const bool decodes = HasClass(factory, "Decoder");
    if (decodes && (HasClass(factory, "Video") || HasClass(factory, "Image")))
        return Skip;
    return Try;
}

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
    struct stat status
    {
    };

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

    GstHolder<GstSample> sample; // being read
    size_t sampleOffset = 0;

    ~Pipeline();
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
    // A plug-in that hangs would hang the shutdown too; its threads and memory are given up.
    if (stalled)
        static_cast<void>(pipeline.release());
    else if (pipeline)
        gst_element_set_state(pipeline.get(), GST_STATE_NULL);
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
    g_signal_connect(decoder, "autoplug-select", G_CALLBACK(SelectPlugin), nullptr);
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
    return true;
}

void SongDecoder::Pipeline::TakeFormat()
{
    gint64 duration = 0;
    if (gst_element_query_duration(pipeline.get(), GST_FORMAT_TIME, &duration) && duration > 0)
        info.durationSeconds = static_cast<double>(duration) / GST_SECOND;
    const GstHolder<GstPad> pad(gst_element_get_static_pad(converter, "sink"));
    const GstHolder<GstCaps> caps(gst_pad_get_current_caps(pad.get()));
    GstAudioInfo format;
    if (caps && gst_audio_info_from_caps(&format, caps.get())) {
        info.channels = GST_AUDIO_INFO_CHANNELS(&format);
        info.sampleRate = GST_AUDIO_INFO_RATE(&format);
    }
}

void SongDecoder::Pipeline::TakeError(GstMessage* message)
{
    GError* fault = nullptr;
    gst_message_parse_error(message, &fault, nullptr);
    const GstHolder<GError> holder(fault);
    if (!missingPlugin.empty())
        Fail("GStreamer has no plug-in for it: " + missingPlugin);
    else if (fault->domain == GST_STREAM_ERROR
        && (fault->code == GST_STREAM_ERROR_TYPE_NOT_FOUND
            || fault->code == GST_STREAM_ERROR_WRONG_TYPE))
        Fail("not a music file that GStreamer knows");
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
                const GstHolder<char> name(gst_missing_plugin_message_get_description(raw));
                missingPlugin = OneLine(name.get());
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
        if (sample)
            return true;
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
        return nullptr;
    }
    return std::unique_ptr<SongDecoder>(new SongDecoder(std::move(pipeline)));
}

SongDecoder::SongDecoder(std::unique_ptr<Pipeline> pipeline)
    : m_pipeline(std::move(pipeline))
{
}

SongDecoder::~SongDecoder() = default;

size_t SongDecoder::Read(float* interleaved, size_t frames)
{
    Pipeline& pipeline = *m_pipeline;
    size_t done = 0;
    while (done < frames) {
        if (!pipeline.sample && !pipeline.NextSample())
            break;
        GstBuffer* buffer = gst_sample_get_buffer(pipeline.sample.get());
        const size_t wanted = (frames - done) * BytesPerFrame;
        const size_t copied = buffer
            ? gst_buffer_extract(buffer, pipeline.sampleOffset, interleaved + 2 * done, wanted)
            : 0;
        pipeline.sampleOffset += copied;
        done += copied / BytesPerFrame;
        if (copied < wanted)
            pipeline.sample.reset();
    }
    return done;
}

std::string SongDecoder::Error() const
{
    return m_pipeline->error;
}

const SongInfo& SongDecoder::Info() const
{
    return m_pipeline->info;
}

}
