#include "apps/pxvis/main/VideoEvents.h"

#include "host/GStreamer.h"

#include <algorithm>
#include <cmath>
#include <gst/app/gstappsink.h>
#include <gst/audio/audio.h>
#include <gst/video/video.h>

using namespace pxvis::host;

namespace {

constexpr double quiet = 0.5; // s

// Notes where something begins.
class Onsets
{
public:
    explicit Onsets(std::vector<double>& list)
        : m_list(list)
    {
    }

    void Add(double time, bool isOn)
    {
        if (isOn && time - m_lastOn > quiet)
            m_list.push_back(time);
        if (isOn)
            m_lastOn = time;
    }

private:
    std::vector<double>& m_list;
    double m_lastOn = -1;
};

double TimeOf(GstSample* sample)
{
    return static_cast<double>(gst_segment_to_stream_time(gst_sample_get_segment(sample),
               GST_FORMAT_TIME, GST_BUFFER_PTS(gst_sample_get_buffer(sample))))
        / GST_SECOND;
}

// Of the brightest pixel, 16 to 235.
int Brightness(GstSample* sample)
{
    GstVideoInfo info;
    GstVideoFrame frame;
    if (!gst_video_info_from_caps(&info, gst_sample_get_caps(sample))
        || !gst_video_frame_map(&frame, &info, gst_sample_get_buffer(sample), GST_MAP_READ))
        return 0;
    int brightest = 0;
    const auto* data = static_cast<const unsigned char*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0));
    for (int y = 0; y < info.height; ++y) {
        for (int x = 0; x < info.width; ++x)
            brightest
                = std::max<int>(brightest, data[y * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0) + x]);
    }
    gst_video_frame_unmap(&frame);
    return brightest;
}

}

VideoEvents::VideoEvents(const std::string& path)
{
    if (!InitializeGStreamer(fault))
        return;
    const bool webm = path.ends_with(".webm");
    // What one stream is ahead of the other waits as it is encoded.
    const char* const queue = "queue max-size-buffers=0 max-size-bytes=0 max-size-time=0";
    const std::string line = "filesrc location=" + path + " ! "
        + (webm ? "matroskademux" : "qtdemux") + " name=demux demux.video_0 ! " + queue
        + (webm ? " ! vp9dec" : " ! avdec_h264")
        + " ! appsink name=pictures sync=false max-buffers=8 demux.audio_0 ! " + queue
        + " ! decodebin ! audioconvert ! audio/x-raw,format=F32LE,channels=1 !"
          " appsink name=sound sync=false max-buffers=8";
    GError* raw = nullptr;
    const GstHolder<GstElement> pipeline(gst_parse_launch(line.c_str(), &raw));
    if (raw) {
        fault = GstHolder<GError>(raw)->message;
        return;
    }
    const auto sink = [&](const char* name) {
        return GstHolder<GstElement>(gst_bin_get_by_name(GST_BIN(pipeline.get()), name));
    };
    const auto pictureSink = sink("pictures");
    const auto soundSink = sink("sound");
    gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
    const auto pull = [](GstElement* from) {
        return GstHolder<GstSample>(
            gst_app_sink_try_pull_sample(GST_APP_SINK(from), 20 * GST_SECOND));
    };

    Onsets flash(flashes);
    while (const auto sample = pull(pictureSink.get())) {
        ++pictures;
        flash.Add(TimeOf(sample.get()), Brightness(sample.get()) > 100);
    }
    Onsets click(clicks);
    while (const auto sample = pull(soundSink.get())) {
        GstMapInfo map;
        GstAudioInfo info;
        if (!gst_audio_info_from_caps(&info, gst_sample_get_caps(sample.get()))
            || !gst_buffer_map(gst_sample_get_buffer(sample.get()), &map, GST_MAP_READ))
            break;
        const double begin = TimeOf(sample.get());
        const auto* samples = reinterpret_cast<const float*>(map.data);
        const size_t count = map.size / sizeof(float);
        for (size_t i = 0; i < count; ++i)
            click.Add(begin + static_cast<double>(i) / info.rate, std::fabs(samples[i]) > 0.2f);
        soundEnd = begin + static_cast<double>(count) / info.rate;
        gst_buffer_unmap(gst_sample_get_buffer(sample.get()), &map);
    }
    const GstHolder<GstBus> bus(gst_element_get_bus(pipeline.get()));
    if (GstMessage* message = gst_bus_pop_filtered(bus.get(), GST_MESSAGE_ERROR)) {
        const GstHolder<GstMessage> holder(message);
        gst_message_parse_error(message, &raw, nullptr);
        fault = GstHolder<GError>(raw)->message;
    }
    gst_element_set_state(pipeline.get(), GST_STATE_NULL);
}
