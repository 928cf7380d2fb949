#include "apps/player/sound/SoundOutput.h"

#include <dirent.h>
#include <string_view>

namespace pxvis::player {

using namespace host;

namespace {

GstHolder<GstElement> Make(const char* factory)
{
    GstElement* element = gst_element_factory_make(factory, nullptr);
    return GstHolder<GstElement>(element ? GST_ELEMENT(gst_object_ref_sink(element)) : nullptr);
}

bool GetsReady(GstElement* element)
{
    if (gst_element_set_state(element, GST_STATE_READY) == GST_STATE_CHANGE_SUCCESS)
        return true;
    gst_element_set_state(element, GST_STATE_NULL);
    return false;
}

// Without one, ALSA complains on standard error about everything that it tries.
bool HasSoundCard()
{
    DIR* folder = opendir("/dev/snd");
    bool has = false;
    while (const dirent* entry = folder ? readdir(folder) : nullptr) {
        const std::string_view name = entry->d_name; // "pcmC0D0p"
        has |= name.starts_with("pcm") && name.ends_with("p");
    }
    if (folder)
        closedir(folder);
    return has;
}

}

void NameStream(GstElement* pulseElement, const char* role)
{
    GstStructure* properties = gst_structure_new("properties", "application.name", G_TYPE_STRING,
        "pxvis", "application.id", G_TYPE_STRING, "pxvis", "application.icon_name", G_TYPE_STRING,
        "pxvis", "media.name", G_TYPE_STRING, "pxvis", "node.name", G_TYPE_STRING, "pxvis",
        "media.role", G_TYPE_STRING, role, nullptr);
    g_object_set(pulseElement, "client-name", "pxvis", "stream-properties", properties, nullptr);
    gst_structure_free(properties);
}

GstHolder<GstElement> MakeOutput(const std::string& device)
{
    if (GstHolder<GstElement> sink = Make("pulsesink")) {
        NameStream(sink.get(), "music");
        if (!device.empty())
            g_object_set(sink.get(), "device", device.c_str(), nullptr);
        if (GetsReady(sink.get()))
            return sink;
    }
    if (!HasSoundCard())
        return nullptr;
    GstHolder<GstElement> sink = Make("alsasink");
    return sink && GetsReady(sink.get()) ? std::move(sink) : nullptr;
}

GstHolder<GstElement> MakeSilentOutput()
{
    GstHolder<GstElement> sink = Make("fakesink");
    if (sink)
        g_object_set(sink.get(), "sync", TRUE, "enable-last-sample", FALSE, nullptr);
    return sink;
}

bool CanPlay(const std::string& device)
{
    const GstHolder<GstElement> sink = MakeOutput(device);
    if (!sink)
        return false;
    bool can = false;
    GstElement* source = gst_element_factory_make("audiotestsrc", nullptr);
    const GstHolder<GstElement> pipeline(
        GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    if (source) {
        gst_util_set_object_arg(G_OBJECT(source), "wave", "silence");
        gst_bin_add_many(GST_BIN(pipeline.get()), source, sink.get(), nullptr);
        constexpr GstClockTime patience = 3 * GST_SECOND;
        can = gst_element_link(source, sink.get())
            && gst_element_set_state(pipeline.get(), GST_STATE_PAUSED) != GST_STATE_CHANGE_FAILURE
            && gst_element_get_state(pipeline.get(), nullptr, nullptr, patience)
                == GST_STATE_CHANGE_SUCCESS;
    }
    gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    gst_element_set_state(sink.get(), GST_STATE_NULL);
    return can;
}

}
