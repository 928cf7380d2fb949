#include "host/StreamTrim.h"

#include "host/GStreamer.h"

#include <gst/audio/audio.h>

#include <cstring>

namespace pxvis::host {

namespace {

// Looks at the stream's first frame. A header frame is not passed on: the decoder would act on
// some encoders' headers and not on others'.
GstPadProbeReturn ReadFirstFrame(GstPad* pad, GstPadProbeInfo* info, void* data)
{
    GstBuffer* buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    auto* trim = static_cast<StreamTrim*>(data);
    // A parser that has read the header says so itself.
    GstMapInfo map;
    if (trim->inContainer || gst_buffer_get_meta(buffer, GST_AUDIO_CLIPPING_META_API_TYPE)
        || !gst_buffer_map(buffer, &map, GST_MAP_READ))
        return GST_PAD_PROBE_REMOVE;
    trim->mp3 = ReadMp3Trim(map.data, map.size);
    gst_buffer_unmap(buffer, &map);
    if (!trim->mp3.isHeaderFrame)
        return GST_PAD_PROBE_REMOVE;
    gst_pad_remove_probe(pad, GST_PAD_PROBE_INFO_ID(info));
    return GST_PAD_PROBE_DROP;
}

void WatchParser(GstBin*, GstBin*, GstElement* element, void* data)
{
    GstElementFactory* factory = gst_element_get_factory(element);
    const char* name = factory ? gst_plugin_feature_get_name(factory) : nullptr;
    if (!name)
        return;
    auto* trim = static_cast<StreamTrim*>(data);
    const bool onlyTags = std::strcmp(name, "id3demux") == 0 || std::strcmp(name, "apedemux") == 0;
    if (HasClass(factory, "Demux") && !onlyTags)
        trim->inContainer = true;
    if (HasClass(factory, "Parser") && std::strcmp(name, "flacparse") != 0)
        trim->lengthIsGuessed = true;
    if (std::strcmp(name, "mpegaudioparse") != 0)
        return;
    const GstHolder<GstPad> pad(gst_element_get_static_pad(element, "src"));
    gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_BUFFER, ReadFirstFrame, data, nullptr);
}

}

void WatchForMp3(GstElement* pipeline, StreamTrim& trim)
{
    g_signal_connect(pipeline, "deep-element-added", G_CALLBACK(WatchParser), &trim);
}

}
