#include "apps/player/collection/SongTags.h"

#include "host/GStreamer.h"
#include "host/TagReader.h"
#include "os/Clock.h"
#include "os/File.h"
#include "os/Thread.h"

#include <algorithm>

namespace pxvis::player {

namespace {

using host::GstHolder;

constexpr GstClockTime pollTime = 50 * GST_MSECOND;
constexpr guint mostQueuedBytes = 16 << 20;

std::atomic<int> stuckReads = 0;

// Nothing that would follow an address in the file to another place.
int SelectPlugin(GstElement*, GstPad*, GstCaps*, GstElementFactory* factory, void*)
{
    enum
    {
        Try,
        Expose,
        Skip
    };

    for (const char* word : { "Adaptive", "Network", "Subtitle" }) {
        if (host::HasClass(factory, word))
            return Skip;
    }
    return Try;
}

// The first piece of each stream is waited for, since the tags come before it, but of those that
// may have none for long.
void TakeStream(GstElement*, GstPad* pad, void* pipeline)
{
    const GstHolder<GstCaps> caps(gst_pad_query_caps(pad, nullptr));
    bool isSparse = false;
    if (caps && !gst_caps_is_empty(caps.get()) && !gst_caps_is_any(caps.get())) {
        const char* type = gst_structure_get_name(gst_caps_get_structure(caps.get(), 0));
        for (const char* kind : { "text/", "subpicture/", "closedcaption/", "meta/",
                 "application/x-ssa", "application/x-ass", "application/x-usf" })
            isSparse = isSparse || g_str_has_prefix(type, kind);
    }
    GstElement* queue = gst_element_factory_make("queue", nullptr);
    GstElement* sink = gst_element_factory_make("fakesink", nullptr);
    if (!queue || !sink)
        return;
    // One stream's sink mustn't hold up the others, which one thread reads as they come.
    g_object_set(queue, "max-size-buffers", 0, "max-size-time", guint64 { 0 }, "max-size-bytes",
        mostQueuedBytes, nullptr);
    g_object_set(sink, "async", isSparse ? FALSE : TRUE, "sync", TRUE, nullptr);
    gst_bin_add_many(GST_BIN(pipeline), queue, sink, nullptr);
    gst_element_link(queue, sink);
    const GstHolder<GstPad> input(gst_element_get_static_pad(queue, "sink"));
    gst_pad_link(pad, input.get());
    gst_element_sync_state_with_parent(sink);
    gst_element_sync_state_with_parent(queue);
}

GstHolder<GstElement> MakePipeline(const std::string& path)
{
    GstHolder<GstElement> pipeline(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    GstElement* source = gst_element_factory_make("filesrc", nullptr);
    GstElement* parser = gst_element_factory_make("parsebin", nullptr);
    for (GstElement* element : { source, parser }) {
        if (element)
            gst_bin_add(GST_BIN(pipeline.get()), element);
    }
    if (!source || !parser)
        return {};
    g_object_set(source, "location", path.c_str(), nullptr);
    g_signal_connect(parser, "autoplug-select", G_CALLBACK(SelectPlugin), nullptr);
    g_signal_connect(parser, "pad-added", G_CALLBACK(TakeStream), pipeline.get());
    gst_element_link(source, parser);
    return pipeline;
}

void End(void* pipeline)
{
    gst_element_set_state(static_cast<GstElement*>(pipeline), GST_STATE_NULL);
    gst_object_unref(pipeline);
    --stuckReads;
}

// What hangs may do so for ever, so nobody waits for its end.
void Abandon(GstHolder<GstElement> pipeline)
{
    ++stuckReads;
    os::Thread thread;
    if (thread.Start(End, pipeline.get()) == 0)
        thread.Detach();
    static_cast<void>(pipeline.release());
}

enum class Progress
{
    Going,
    Done,
    Failed
};

Progress TakeMessage(GstMessage* message, host::SongInfo& info)
{
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_TAG: {
        GstTagList* tags = nullptr;
        gst_message_parse_tag(message, &tags);
        const GstHolder<GstTagList> holder(tags);
        host::MergeTags(tags, info);
        return Progress::Going;
    }
    case GST_MESSAGE_ASYNC_DONE:
    case GST_MESSAGE_EOS:
        return Progress::Done;
    case GST_MESSAGE_ERROR:
        return Progress::Failed;
    default:
        return Progress::Going;
    }
}

// Of a file without an index, which mostly has sound and pictures.
int64_t SoundBytes(const std::string& path, const host::TrackTags& tags)
{
    return std::max<int64_t>(0, os::FileSize(path) - static_cast<int64_t>(tags.cover.size()));
}

}

bool ReadSongTags(const std::string& path, const std::atomic<bool>& stop, host::SongInfo& info)
{
    info = {};
    std::string error;
    if (stuckReads >= mostStuckTagReads || !host::InitializeGStreamer(error))
        return false;
    GstHolder<GstElement> pipeline = MakePipeline(path);
    if (!pipeline)
        return false;
    const GstHolder<GstBus> bus(gst_element_get_bus(pipeline.get()));
    const int64_t end = os::MonotonicNanoseconds() + int64_t { longestTagRead } * 1'000'000;
    Progress progress = Progress::Going;
    gst_element_set_state(pipeline.get(), GST_STATE_PAUSED);
    while (progress == Progress::Going && !stop && os::MonotonicNanoseconds() < end) {
        const GstHolder<GstMessage> message(gst_bus_timed_pop(bus.get(), pollTime));
        if (message)
            progress = TakeMessage(message.get(), info);
    }
    if (progress == Progress::Going) {
        Abandon(std::move(pipeline));
        return false;
    }
    while (GstMessage* raw = gst_bus_pop(bus.get())) {
        const GstHolder<GstMessage> message(raw);
        TakeMessage(raw, info);
    }
    gint64 duration = 0;
    if (gst_element_query_duration(pipeline.get(), GST_FORMAT_TIME, &duration) && duration > 0)
        info.durationSeconds = static_cast<double>(duration) / GST_SECOND;
    else if (info.bitRate > 0)
        info.durationSeconds = static_cast<double>(SoundBytes(path, info.tags)) * 8 / info.bitRate;
    gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    return progress == Progress::Done;
}

}
