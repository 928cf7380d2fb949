#include "host/VideoFile.h"

#include <gst/app/gstappsink.h>
#include <gst/audio/audio.h>
#include <gst/video/video.h>

using namespace pxvis::host;

static std::vector<unsigned char> Plane(const GstVideoFrame& frame, guint plane)
{
    std::vector<unsigned char> rows;
    const auto* data = static_cast<const unsigned char*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, plane));
    for (int y = 0; y < GST_VIDEO_FRAME_COMP_HEIGHT(&frame, plane); ++y) {
        const unsigned char* row = data + y * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, plane);
        rows.insert(rows.end(), row, row + GST_VIDEO_FRAME_COMP_WIDTH(&frame, plane));
    }
    return rows;
}

static void TakePicture(VideoFile& file, GstSample* sample)
{
    GstVideoInfo info;
    GstVideoFrame frame;
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    if (!gst_video_info_from_caps(&info, gst_sample_get_caps(sample))
        || !gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ)) {
        file.fault = "a picture can't be read";
        return;
    }
    const GstHolder<char> text(gst_caps_to_string(gst_sample_get_caps(sample)));
    file.format = text.get();
    file.width = info.width;
    file.height = info.height;
    const uint64_t begin = gst_segment_to_stream_time(
        gst_sample_get_segment(sample), GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
    file.pictures.push_back({ begin, Plane(frame, 0), Plane(frame, 1), Plane(frame, 2) });
    gst_video_frame_unmap(&frame);
}

static void TakeSound(VideoFile& file, GstSample* sample)
{
    GstAudioInfo info;
    GstMapInfo map;
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    if (!gst_audio_info_from_caps(&info, gst_sample_get_caps(sample))
        || !gst_buffer_map(buffer, &map, GST_MAP_READ)) {
        file.fault = "the sound can't be read";
        return;
    }
    if (file.sound.empty())
        file.soundBegin = gst_segment_to_stream_time(
            gst_sample_get_segment(sample), GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
    file.soundRate = info.rate;
    const auto* samples = reinterpret_cast<const float*>(map.data);
    for (size_t i = 0; i < map.size / sizeof(float); i += static_cast<size_t>(info.channels))
        file.sound.push_back(samples[i]);
    gst_buffer_unmap(buffer, &map);
}

VideoFile::VideoFile(const std::string& path)
{
    if (!InitializeGStreamer(fault))
        return;
    const char* const queue = "queue max-size-buffers=0 max-size-bytes=0 max-size-time=0";
    const bool webm = path.ends_with(".webm");
    const std::string line = std::string("filesrc name=file ! ")
        + (webm ? "matroskademux" : "qtdemux") + " name=demux demux.video_0 ! " + queue
        + (webm ? " ! vp9dec" : " ! avdec_h264")
        + " ! appsink name=pictures sync=false demux.audio_0 ! " + queue
        + " ! decodebin ! audioconvert ! audio/x-raw,format=F32LE,layout=interleaved !"
          " appsink name=sound sync=false";
    GError* raw = nullptr;
    const GstHolder<GstElement> pipeline(gst_parse_launch(line.c_str(), &raw));
    if (raw) {
        const GstHolder<GError> failure(raw);
        fault = raw->message;
        return;
    }
    const auto part = [&](const char* name) {
        return GstHolder<GstElement>(gst_bin_get_by_name(GST_BIN(pipeline.get()), name));
    };
    const auto source = part("file");
    const auto pictureSink = part("pictures");
    const auto soundSink = part("sound");
    g_object_set(source.get(), "location", path.c_str(), nullptr);
    gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
    constexpr GstClockTime patience = 20 * GST_SECOND;
    while (GstSample* s = gst_app_sink_try_pull_sample(GST_APP_SINK(pictureSink.get()), patience))
        TakePicture(*this, GstHolder<GstSample>(s).get());
    while (GstSample* s = gst_app_sink_try_pull_sample(GST_APP_SINK(soundSink.get()), patience))
        TakeSound(*this, GstHolder<GstSample>(s).get());
    const GstHolder<GstBus> bus(gst_element_get_bus(pipeline.get()));
    tags.reset(gst_tag_list_new_empty());
    while (GstMessage* popped = gst_bus_pop_filtered(
               bus.get(), static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_TAG))) {
        const GstHolder<GstMessage> message(popped);
        if (GST_MESSAGE_TYPE(popped) == GST_MESSAGE_ERROR) {
            gst_message_parse_error(popped, &raw, nullptr);
            fault = GstHolder<GError>(raw)->message;
        } else {
            GstTagList* found = nullptr;
            gst_message_parse_tag(popped, &found);
            gst_tag_list_insert(tags.get(), GstHolder<GstTagList>(found).get(), GST_TAG_MERGE_KEEP);
        }
    }
    gst_element_set_state(pipeline.get(), GST_STATE_NULL);
}
