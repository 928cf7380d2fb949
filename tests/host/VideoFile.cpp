#include "host/VideoFile.h"

#include "host/VideoPipeline.h"

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
    file.pictures.push_back(
        { VideoPipeline::TimeOf(sample), Plane(frame, 0), Plane(frame, 1), Plane(frame, 2) });
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
        file.soundBegin = VideoPipeline::TimeOf(sample);
    file.soundRate = info.rate;
    const auto* samples = reinterpret_cast<const float*>(map.data);
    for (size_t i = 0; i < map.size / sizeof(float); i += static_cast<size_t>(info.channels))
        file.sound.push_back(samples[i]);
    gst_buffer_unmap(buffer, &map);
}

VideoFile::VideoFile(const std::string& path)
{
    VideoPipeline pipeline(path);
    while (const auto sample = pipeline.NextPicture())
        TakePicture(*this, sample.get());
    while (const auto sample = pipeline.NextSound())
        TakeSound(*this, sample.get());
    tags.reset(gst_tag_list_new_empty());
    const std::string failure = pipeline.Fault(tags.get());
    if (!failure.empty())
        fault = failure;
}
