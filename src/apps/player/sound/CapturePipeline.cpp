#include "apps/player/sound/CapturePipeline.h"

#include "apps/player/sound/SoundOutput.h"
#include "apps/player/sound/SoundTap.h"
#include "host/analysis/SampleSource.h"

#include <gst/audio/audio.h>

#include <utility>

namespace pxvis::player {

using namespace host;

namespace {

// How late a picture is at most, in us; less than it lasts, or else it shows the same sound twice.
constexpr gint64 QuickBlockTime = 10'000;
constexpr gint64 RestingBlockTime = 200'000;

GstHolder<GstElement> Make(const char* factory)
{
    GstElement* element = gst_element_factory_make(factory, nullptr);
    return GstHolder<GstElement>(element ? GST_ELEMENT(gst_object_ref_sink(element)) : nullptr);
}

// Ready; null: nobody answers. For what the computer plays there is PipeWire's own source as well.
GstHolder<GstElement> MakeSource(const std::string& device, CapturePace pace)
{
    if (GstHolder<GstElement> source = Make("pulsesrc")) {
        NameStream(source.get(), "production");
        const gint64 blockTime = pace == CapturePace::Quick ? QuickBlockTime : RestingBlockTime;
        constexpr gint64 blocks = 20;
        g_object_set(source.get(), "device", device.c_str(), "latency-time", blockTime,
            "buffer-time", blocks * blockTime, "provide-clock", FALSE, nullptr);
        if (gst_element_set_state(source.get(), GST_STATE_READY) == GST_STATE_CHANGE_SUCCESS)
            return source;
        gst_element_set_state(source.get(), GST_STATE_NULL);
    }
    // It would hear an output in place of the microphone that was chosen.
    const bool isMonitor = device.starts_with('@') || device.ends_with(".monitor");
    GstHolder<GstElement> source = isMonitor ? Make("pipewiresrc") : nullptr;
    if (!source)
        return nullptr;
    GstStructure* properties = gst_structure_new("properties", "stream.capture.sink", G_TYPE_STRING,
        "true", "node.name", G_TYPE_STRING, "pxvis", nullptr);
    g_object_set(source.get(), "client-name", "pxvis", "stream-properties", properties, nullptr);
    gst_structure_free(properties);
    if (gst_element_set_state(source.get(), GST_STATE_READY) == GST_STATE_CHANGE_SUCCESS)
        return source;
    gst_element_set_state(source.get(), GST_STATE_NULL);
    return nullptr;
}

}

CapturePipeline::CapturePipeline(std::string device, std::string source, CapturePace pace,
    std::shared_ptr<Mailbox> mailbox, CaptureEvents& events)
    : m_device(std::move(device))
    , m_sourceText(std::move(source))
    , m_pace(pace)
    , m_mailbox(std::move(mailbox))
    , m_events(events)
    , m_analysis(std::make_shared<LiveAnalysis>(0, pace == CapturePace::Resting))
{
}

void CapturePipeline::Open()
{
    m_thread.Post([self = shared_from_this()] { self->OpenOnThread(); });
}

void CapturePipeline::Close()
{
    m_isClosed = true;
    m_thread.Post([self = shared_from_this()] { self->CloseOnThread(); });
    m_thread.Finish();
}

void CapturePipeline::Fail(bool hasServer)
{
    m_mailbox->Post([self = shared_from_this(), hasServer] {
        if (!self->m_isClosed)
            self->m_events.OnCaptureFault(*self, hasServer);
    });
}

bool CapturePipeline::Build(bool& hasServer)
{
    GstHolder<GstElement> source;
    if (!m_sourceText.empty()) {
        GstElement* made = gst_parse_bin_from_description(m_sourceText.c_str(), TRUE, nullptr);
        source.reset(made ? GST_ELEMENT(gst_object_ref_sink(made)) : nullptr);
    } else {
        source = MakeSource(m_device, m_pace);
    }
    hasServer = source != nullptr;
    const GstHolder<GstElement> sink = Make("fakesink");
    if (!source || !sink)
        return false;
    g_object_set(sink.get(), "sync", FALSE, "enable-last-sample", FALSE, nullptr);
    GstHolder<GstElement> pipeline(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    gst_bin_add_many(GST_BIN(pipeline.get()), source.get(), sink.get(), nullptr);
    // The server does the conversion.
    const GstHolder<GstCaps> wanted(gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING,
        GST_AUDIO_NE(F32), "rate", G_TYPE_INT, SampleRate, "channels", G_TYPE_INT, 2, nullptr));
    const GstHolder<GstPad> pad(gst_element_get_static_pad(sink.get(), "sink"));
    TapSound(pad.get(), m_analysis);
    const GstHolder<GstBus> bus(gst_element_get_bus(pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), TakeMessage, this, nullptr);
    const bool isLinked = gst_element_link_filtered(source.get(), sink.get(), wanted.get());
    const std::lock_guard lock(m_mutex);
    m_pipeline = std::move(pipeline);
    return isLinked;
}

void CapturePipeline::OpenOnThread()
{
    std::string error;
    bool hasServer = false;
    if (m_isClosed)
        return;
    if (!InitializeGStreamer(error) || !Build(hasServer)
        || gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
        Fail(hasServer);
}

void CapturePipeline::CloseOnThread()
{
    if (!m_pipeline)
        return;
    // Its threads end with this, and with them all calls that know this object.
    gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    const GstHolder<GstBus> bus(gst_element_get_bus(m_pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
    GstHolder<GstElement> pipeline;
    const std::lock_guard lock(m_mutex);
    pipeline.swap(m_pipeline);
}

GstBusSyncReply CapturePipeline::TakeMessage(GstBus*, GstMessage* message, void* context)
{
    auto& self = *static_cast<CapturePipeline*>(context);
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR
        || GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS) {
        self.Fail(true);
    } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_STREAM_START) {
        self.m_mailbox->Post([own = self.shared_from_this()] {
            if (!own->m_isClosed)
                own->m_events.OnCapture(*own);
        });
    }
    gst_message_unref(message);
    return GST_BUS_DROP;
}

std::optional<int64_t> CapturePipeline::Now()
{
    GstHolder<GstElement> pipeline;
    {
        const std::lock_guard lock(m_mutex);
        if (m_pipeline)
            pipeline.reset(GST_ELEMENT(gst_object_ref(m_pipeline.get())));
    }
    return pipeline ? RunningTime(pipeline.get()) : std::nullopt;
}

}
