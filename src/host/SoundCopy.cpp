#include "host/SoundCopy.h"

#include "host/OpusStream.h"
#include "host/analysis/Mp3Trim.h"

#include <string_view>

namespace pxvis::host {

namespace {

// What decoders need to be right again after a jump into a stream: Opus asks for 80 ms, mp3 frames
// may borrow from some before. No more: some players end as much earlier.
constexpr GstClockTime Preroll = 100 * GST_MSECOND;

// No encoder's run-up is longer.
constexpr GstClockTime LongestRunUp = 200 * GST_MSECOND;

// The parser that a coded stream needs before the muxer: empty for none, null when an MP4 file
// can't hold the stream.
const char* ParserFor(const GstCaps* caps)
{
    const GstStructure* structure = gst_caps_get_structure(caps, 0);
    int version = 0;
    gst_structure_get_int(structure, "mpegversion", &version);
    if (gst_structure_has_name(structure, "audio/mpeg"))
        return version == 1 ? "mpegaudioparse" : "aacparse";
    return gst_structure_has_name(structure, "audio/x-opus") ? "" : nullptr;
}

}

bool SoundCopy::Build(GstBin* pipeline, GstPad* muxerPad, const std::string& songPath,
    GstClockTime start, std::string& error)
{
    m_pipeline = pipeline;
    m_muxerPad = muxerPad;
    m_songPath = songPath;
    m_start = start;
    m_source = gst_element_factory_make("filesrc", nullptr);
    GstElement* parse = gst_element_factory_make("parsebin", nullptr);
    if (!m_source || !parse) {
        g_clear_object(&m_source);
        error = "GStreamer has no parsebin; the package gstreamer1.0-plugins-base holds it";
        return false;
    }
    gst_bin_add_many(pipeline, m_source, parse, nullptr);
    g_object_set(m_source, "location", songPath.c_str(), nullptr);
    const auto added = +[](GstElement*, GstPad* pad, void* self) {
        static_cast<SoundCopy*>(self)->LinkSound(pad);
    };
    g_signal_connect(parse, "pad-added", G_CALLBACK(added), this);
    const auto watch = +[](GstBin*, GstBin*, GstElement* element, void* self) {
        static_cast<SoundCopy*>(self)->WatchElement(element);
    };
    g_signal_connect(parse, "deep-element-added", G_CALLBACK(watch), this);
    return gst_element_link(m_source, parse);
}

// Runs on a streaming thread, which the opening one waits for. The first sound stream is the song;
// covers and the like stay unlinked.
void SoundCopy::LinkSound(GstPad* pad)
{
    GstHolder<GstCaps> caps(gst_pad_get_current_caps(pad));
    if (!caps) // files of one stream: nothing has flowed yet
        caps.reset(gst_pad_query_caps(pad, nullptr));
    if (gst_caps_get_size(caps.get()) == 0)
        return;
    const char* coding = gst_structure_get_name(gst_caps_get_structure(caps.get(), 0));
    if (!g_str_has_prefix(coding, "audio/") || gst_pad_is_linked(m_muxerPad))
        return;
    m_opus = g_str_equal(coding, "audio/x-opus");
    m_opusSkip = OpusSkip(caps.get());
    const char* parser = ParserFor(caps.get());
    m_mp3 = parser && g_str_equal(parser, "mpegaudioparse");
    const gboolean linked = parser && LinkThrough(pad, parser);
    gst_element_post_message(m_source,
        gst_message_new_application(GST_OBJECT(m_source),
            gst_structure_new("sound", "linked", G_TYPE_BOOLEAN, linked, "coding", G_TYPE_STRING,
                coding, nullptr)));
}

bool SoundCopy::LinkThrough(GstPad* pad, const char* parser)
{
    GstElement* queue = gst_element_factory_make("queue", nullptr);
    GstElement* first = *parser ? gst_element_factory_make(parser, nullptr) : queue;
    if (!queue || !first) {
        g_clear_object(&queue);
        return false;
    }
    gst_bin_add(m_pipeline, queue);
    if (first != queue) {
        gst_bin_add(m_pipeline, first);
        if (!gst_element_link(first, queue))
            return false;
    }
    const GstHolder<GstPad> sink(gst_element_get_static_pad(first, "sink"));
    const GstHolder<GstPad> source(gst_element_get_static_pad(queue, "src"));
    const auto adjust = +[](GstPad* from, GstPadProbeInfo* info, void* self) {
        return static_cast<SoundCopy*>(self)->Adjust(from, info);
    };
    gst_pad_add_probe(source.get(), GST_PAD_PROBE_TYPE_BUFFER, adjust, this, nullptr);
    if (gst_pad_link(source.get(), m_muxerPad) != GST_PAD_LINK_OK
        || gst_pad_link(pad, sink.get()) != GST_PAD_LINK_OK)
        return false;
    gst_element_sync_state_with_parent(queue);
    gst_element_sync_state_with_parent(first);
    return true;
}

bool SoundCopy::WaitForSound(GstBus* bus, std::string& error)
{
    constexpr GstClockTime patience = 15 * GST_SECOND;
    const auto wanted = static_cast<GstMessageType>(
        GST_MESSAGE_APPLICATION | GST_MESSAGE_ERROR | GST_MESSAGE_EOS);
    const GstHolder<GstMessage> message(gst_bus_timed_pop_filtered(bus, patience, wanted));
    if (!message || GST_MESSAGE_TYPE(message.get()) != GST_MESSAGE_APPLICATION) {
        error = "the sound of " + m_songPath + " can't be copied";
        return false;
    }
    const GstStructure* news = gst_message_get_structure(message.get());
    gboolean linked = FALSE;
    gst_structure_get_boolean(news, "linked", &linked);
    if (!linked)
        error = std::string("an MP4 file can't hold the song's own sound (")
            + gst_structure_get_string(news, "coding") + "); take aac or opus";
    return linked;
}

// The muxer drops what lies before the segment and shifts the rest, so that a run-up would be lost
// in part. It gets the whole stream from 0 on; Skip() tells how much of it is run-up.
GstPadProbeReturn SoundCopy::Adjust(GstPad* pad, GstPadProbeInfo* info)
{
    GstBuffer* buffer = gst_buffer_make_writable(GST_PAD_PROBE_INFO_BUFFER(info));
    GST_PAD_PROBE_INFO_DATA(info) = buffer;
    if (m_opus && gst_buffer_memcmp(buffer, 0, "Opus", 4) == 0)
        return GST_PAD_PROBE_DROP; // an Ogg file's header packets
    if (!m_begun && !BeginSound(pad, buffer))
        return GST_PAD_PROBE_DROP;
    GstClockTime time = 0;
    if (m_opus) {
        time = gst_util_uint64_scale(m_opusSamples, GST_SECOND, OpusRate);
        m_opusSamples += OpusPacketSamples(buffer);
        GST_BUFFER_DURATION(buffer)
            = gst_util_uint64_scale(m_opusSamples, GST_SECOND, OpusRate) - time;
    } else if (m_mp3 && m_mp3Rate > 0) {
        // The parser's own times leave out the run-up that a LAME header tells; Skip() does that.
        time = gst_util_uint64_scale(m_mp3Samples, GST_SECOND, m_mp3Rate);
        m_mp3Samples += m_mp3Rate < 32000 ? 576 : 1152;
        GST_BUFFER_DURATION(buffer)
            = gst_util_uint64_scale(m_mp3Samples, GST_SECOND, m_mp3Rate) - time;
    } else {
        if (m_firstTime == GST_CLOCK_TIME_NONE)
            m_firstTime = GST_BUFFER_PTS(buffer);
        if (GST_BUFFER_PTS(buffer) == GST_CLOCK_TIME_NONE || GST_BUFFER_PTS(buffer) < m_firstTime)
            return GST_PAD_PROBE_DROP;
        time = GST_BUFFER_PTS(buffer) - m_firstTime;
    }
    if (time + Preroll < m_start || time > m_end)
        return GST_PAD_PROBE_DROP;
    if (m_firstKept == GST_CLOCK_TIME_NONE)
        m_firstKept = time;
    GST_BUFFER_PTS(buffer) = m_segmentStart + time - m_firstKept;
    GST_BUFFER_DTS(buffer) = GST_CLOCK_TIME_NONE;
    return GST_PAD_PROBE_OK;
}

// False when the first buffer holds no sound.
bool SoundCopy::BeginSound(GstPad* pad, GstBuffer* first)
{
    m_begun = true;
    if (GstEvent* event = gst_pad_get_sticky_event(pad, GST_EVENT_SEGMENT, 0)) {
        const GstSegment* segment = nullptr;
        gst_event_parse_segment(event, &segment);
        if (segment->format == GST_FORMAT_TIME)
            m_segmentStart = segment->start;
        gst_event_unref(event);
    }
    GstMapInfo map;
    if (!m_mp3 || m_inContainer || !gst_buffer_map(first, &map, GST_MAP_READ))
        return true;
    const Mp3Trim trim = ReadMp3Trim(map.data, map.size);
    gst_buffer_unmap(first, &map);
    m_mp3Skip = static_cast<uint32_t>(trim.start);
    if (const GstHolder<GstCaps> caps(gst_pad_get_current_caps(pad)); caps)
        gst_structure_get_int(gst_caps_get_structure(caps.get(), 0), "rate", &m_mp3Rate);
    return !trim.isHeaderFrame;
}

void SoundCopy::WatchElement(GstElement* element)
{
    GstElementFactory* factory = gst_element_get_factory(element);
    if (!factory)
        return;
    const std::string_view name = gst_plugin_feature_get_name(factory);
    const std::string_view classes
        = gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_KLASS);
    if (classes.find("Demux") != classes.npos && name != "id3demux" && name != "apedemux")
        m_inContainer = true;
}

void SoundCopy::EndAfter(GstClockTime length)
{
    m_end = m_start + length + LongestRunUp;
}

uint32_t SoundCopy::Skip(uint32_t rate) const
{
    const GstClockTime early
        = m_firstKept < m_start ? m_start - m_firstKept : 0; // also when nothing was kept
    return RunUp(rate)
        + static_cast<uint32_t>(gst_util_uint64_scale_round(early, rate, GST_SECOND));
}

uint32_t SoundCopy::RunUp(uint32_t rate) const
{
    if (m_opus && m_opusSkip)
        return *m_opusSkip;
    if (m_mp3Skip > 0)
        return m_mp3Skip;
    const GstClockTime first = m_firstTime == GST_CLOCK_TIME_NONE ? 0 : m_firstTime;
    if (m_segmentStart <= first)
        return m_opus ? OpusUsualSkip : 0;
    return static_cast<uint32_t>(
        gst_util_uint64_scale_round(m_segmentStart - first, rate, GST_SECOND));
}

}
