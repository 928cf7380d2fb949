#include "host/VideoPipeline.h"

#include <gst/app/gstappsink.h>

using namespace pxvis::host;

VideoPipeline::VideoPipeline(const std::string& path)
{
    if (!InitializeGStreamer(m_fault))
        return;
    const bool webm = path.ends_with(".webm");
    const char* const queue = "queue max-size-buffers=0 max-size-bytes=0 max-size-time=0";
    const std::string line = std::string("filesrc name=file ! ")
        + (webm ? "matroskademux" : "qtdemux") + " name=demux demux.video_0 ! " + queue
        + (webm ? " ! vp9dec" : " ! avdec_h264")
        + " ! appsink name=pictures sync=false max-buffers=8 demux.audio_0 ! " + queue
        + " ! decodebin ! audioconvert ! audio/x-raw,format=F32LE,layout=interleaved !"
          " appsink name=sound sync=false max-buffers=8";
    GError* error = nullptr;
    m_pipeline.reset(gst_parse_launch(line.c_str(), &error));
    if (error) {
        m_fault = GstHolder<GError>(error)->message;
        m_pipeline.reset();
        return;
    }
    const GstHolder<GstElement> file(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "file"));
    g_object_set(file.get(), "location", path.c_str(), nullptr);
    gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING);
}

VideoPipeline::~VideoPipeline()
{
    if (m_pipeline)
        gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
}

VideoPipeline::Sample VideoPipeline::Next(const char* sink) const
{
    if (!m_pipeline)
        return {};
    constexpr GstClockTime patience = 20 * GST_SECOND;
    const GstHolder<GstElement> element(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), sink));
    return Sample(gst_app_sink_try_pull_sample(GST_APP_SINK(element.get()), patience));
}

uint64_t VideoPipeline::TimeOf(GstSample* sample)
{
    return gst_segment_to_stream_time(gst_sample_get_segment(sample), GST_FORMAT_TIME,
        GST_BUFFER_PTS(gst_sample_get_buffer(sample)));
}

std::string VideoPipeline::Fault(GstTagList* tags)
{
    if (!m_pipeline)
        return m_fault;
    const GstHolder<GstBus> bus(gst_element_get_bus(m_pipeline.get()));
    const auto kinds = static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_TAG);
    while (GstMessage* popped = gst_bus_pop_filtered(bus.get(), kinds)) {
        const GstHolder<GstMessage> message(popped);
        if (GST_MESSAGE_TYPE(popped) == GST_MESSAGE_ERROR) {
            GError* error = nullptr;
            gst_message_parse_error(popped, &error, nullptr);
            m_fault = GstHolder<GError>(error)->message;
        } else if (tags) {
            GstTagList* found = nullptr;
            gst_message_parse_tag(popped, &found);
            gst_tag_list_insert(tags, GstHolder<GstTagList>(found).get(), GST_TAG_MERGE_KEEP);
        }
    }
    return m_fault;
}
