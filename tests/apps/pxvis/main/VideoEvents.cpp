#include "apps/pxvis/main/VideoEvents.h"

#include "host/VideoPipeline.h"

#include <algorithm>
#include <cmath>
#include <gst/audio/audio.h>
#include <gst/video/video.h>

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

double SecondsOf(GstSample* sample)
{
    return static_cast<double>(VideoPipeline::TimeOf(sample)) / GST_SECOND;
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
    VideoPipeline pipeline(path);
    Onsets flash(flashes);
    while (const auto sample = pipeline.NextPicture()) {
        ++pictures;
        flash.Add(SecondsOf(sample.get()), Brightness(sample.get()) > 100);
    }
    Onsets click(clicks);
    while (const auto sample = pipeline.NextSound()) {
        GstMapInfo map;
        GstAudioInfo info;
        if (!gst_audio_info_from_caps(&info, gst_sample_get_caps(sample.get()))
            || !gst_buffer_map(gst_sample_get_buffer(sample.get()), &map, GST_MAP_READ))
            break;
        const double begin = SecondsOf(sample.get());
        const auto* samples = reinterpret_cast<const float*>(map.data);
        const auto channels = static_cast<size_t>(info.channels);
        const size_t count = map.size / sizeof(float) / channels;
        for (size_t i = 0; i < count; ++i)
            click.Add(begin + static_cast<double>(i) / info.rate,
                std::fabs(samples[i * channels]) > 0.2f);
        soundEnd = begin + static_cast<double>(count) / info.rate;
        gst_buffer_unmap(gst_sample_get_buffer(sample.get()), &map);
    }
    fault = pipeline.Fault();
}
