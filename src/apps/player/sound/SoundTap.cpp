#include "apps/player/sound/SoundTap.h"

#include "host/GStreamer.h"
#include "host/analysis/LiveAnalysis.h"
#include "host/analysis/SampleSource.h"

#include <gst/audio/audio.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace pxvis::player {

namespace {

using namespace host;

// Pairs converted at once. A stream of one sample a second makes 44100 of each.
constexpr gsize Slice = 4096;

class SoundTap
{
public:
    explicit SoundTap(std::shared_ptr<LiveAnalysis> analysis)
        : m_analysis(std::move(analysis))
    {
        gst_segment_init(&m_segment, GST_FORMAT_TIME);
        gst_audio_info_init(&m_format);
    }

    void TakeEvent(GstEvent* event);
    void TakeBuffer(GstBuffer* buffer);

private:
    struct FreeConverter
    {
        void operator()(GstAudioConverter* converter) const { gst_audio_converter_free(converter); }
    };

    void TakeFormat(const GstCaps* caps);
    void Convert(GstAudioBuffer& sound, int64_t time);
    void PushSilence();

    std::shared_ptr<LiveAnalysis> m_analysis;
    GstSegment m_segment;
    GstAudioInfo m_format;
    std::unique_ptr<GstAudioConverter, FreeConverter> m_converter; // null: no sound, or none yet
    std::vector<float> m_pairs;
    int64_t m_end = 0; // running time behind what came
};

void SoundTap::TakeFormat(const GstCaps* caps)
{
    m_converter.reset();
    if (!gst_audio_info_from_caps(&m_format, caps))
        return;
    GstAudioInfo wanted;
    gst_audio_info_set_format(&wanted, GST_AUDIO_FORMAT_F32, SampleRate, 2, nullptr);
    m_converter.reset(
        gst_audio_converter_new(GST_AUDIO_CONVERTER_FLAG_NONE, &m_format, &wanted, nullptr));
}

void SoundTap::TakeEvent(GstEvent* event)
{
    switch (GST_EVENT_TYPE(event)) {
    case GST_EVENT_CAPS: {
        GstCaps* caps = nullptr;
        gst_event_parse_caps(event, &caps);
        TakeFormat(caps);
        break;
    }
    case GST_EVENT_SEGMENT:
        gst_event_copy_segment(event, &m_segment);
        break;
    case GST_EVENT_FLUSH_STOP:
        gst_segment_init(&m_segment, GST_FORMAT_TIME);
        m_analysis->Flush();
        if (m_converter)
            gst_audio_converter_reset(m_converter.get());
        break;
    case GST_EVENT_EOS:
        PushSilence();
        break;
    default:
        break;
    }
}

// The detectors hear ahead, so that without this the song's last moments would never be shown.
void SoundTap::PushSilence()
{
    m_pairs.assign(size_t { 2 } * SampleRate / 2, 0.0f);
    m_analysis->Push(m_pairs.data(), m_pairs.size() / 2, m_end);
}

void SoundTap::Convert(GstAudioBuffer& sound, int64_t time)
{
    const auto rate = static_cast<gsize>(GST_AUDIO_INFO_RATE(&m_format));
    const gsize most = std::clamp<gsize>(Slice * rate / SampleRate, 1, Slice);
    std::vector<gpointer> planes(static_cast<size_t>(sound.n_planes));
    for (gsize done = 0; done < sound.n_samples;) {
        const gsize count = std::min(most, sound.n_samples - done);
        const gsize made = gst_audio_converter_get_out_frames(m_converter.get(), count);
        m_pairs.resize(2 * made);
        const gsize step = sound.n_planes > 1 ? static_cast<gsize>(GST_AUDIO_INFO_BPS(&m_format))
                                              : static_cast<gsize>(GST_AUDIO_INFO_BPF(&m_format));
        for (size_t i = 0; i < planes.size(); ++i)
            planes[i] = static_cast<char*>(sound.planes[i]) + done * step;
        gpointer pairs = m_pairs.data();
        if (!gst_audio_converter_samples(m_converter.get(), GST_AUDIO_CONVERTER_FLAG_NONE,
                planes.data(), count, &pairs, made))
            return;
        m_analysis->Push(m_pairs.data(), made,
            time + static_cast<int64_t>(gst_util_uint64_scale(done, GST_SECOND, rate)));
        done += count;
    }
}

void SoundTap::TakeBuffer(GstBuffer* buffer)
{
    if (!m_converter || m_segment.format != GST_FORMAT_TIME)
        return;
    // What lies outside of the segment is not played.
    const GstHolder<GstBuffer> clipped(gst_audio_buffer_clip(gst_buffer_ref(buffer), &m_segment,
        GST_AUDIO_INFO_RATE(&m_format), GST_AUDIO_INFO_BPF(&m_format)));
    GstAudioBuffer sound;
    if (!clipped || !gst_audio_buffer_map(&sound, &m_format, clipped.get(), GST_MAP_READ))
        return;
    if (GST_BUFFER_PTS_IS_VALID(clipped.get())) {
        const guint64 time = gst_segment_to_running_time(
            &m_segment, GST_FORMAT_TIME, GST_BUFFER_PTS(clipped.get()));
        if (GST_CLOCK_TIME_IS_VALID(time))
            m_end = static_cast<int64_t>(time);
    }
    Convert(sound, m_end);
    m_end += static_cast<int64_t>(gst_util_uint64_scale(
        sound.n_samples, GST_SECOND, static_cast<guint64>(GST_AUDIO_INFO_RATE(&m_format))));
    gst_audio_buffer_unmap(&sound);
}

GstPadProbeReturn Probe(GstPad*, GstPadProbeInfo* info, void* context)
{
    auto& tap = *static_cast<SoundTap*>(context);
    if (GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER)
        tap.TakeBuffer(GST_PAD_PROBE_INFO_BUFFER(info));
    else
        tap.TakeEvent(GST_PAD_PROBE_INFO_EVENT(info));
    return GST_PAD_PROBE_OK;
}

}

void TapSound(GstPad* pad, std::shared_ptr<LiveAnalysis> analysis)
{
    constexpr auto types = static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BUFFER
        | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM | GST_PAD_PROBE_TYPE_EVENT_FLUSH);
    gst_pad_add_probe(pad, types, Probe, new SoundTap(std::move(analysis)),
        [](void* tap) { delete static_cast<SoundTap*>(tap); });
}

std::optional<int64_t> RunningTime(GstElement* pipeline)
{
    if (GST_STATE(pipeline) != GST_STATE_PLAYING)
        return {};
    GstClock* clock = gst_element_get_clock(pipeline);
    if (!clock)
        return {};
    const auto now = static_cast<int64_t>(gst_clock_get_time(clock));
    gst_object_unref(clock);
    return now - static_cast<int64_t>(gst_element_get_base_time(pipeline));
}

}
