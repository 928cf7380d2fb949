#include "host/SongFile.h"

#include "host/GStreamer.h"

#include <gst/app/gstappsrc.h>

using namespace pxvis::host;

bool WriteSongFile(const std::string& path, const std::vector<float>& interleaved,
    const std::string& encoder, const GstTagList* tags, std::string& error)
{
    if (!InitializeGStreamer(error))
        return false;
    const std::string description
        = "appsrc name=source format=time caps=audio/x-raw,format=F32LE,"
          "layout=interleaved,rate=44100,channels=2,channel-mask=(bitmask)3 "
          "! audioconvert ! audioresample ! "
        + encoder + " ! filesink name=file";
    GError* fault = nullptr;
    const GstHolder<GstElement> pipeline(gst_parse_launch(description.c_str(), &fault));
    if (fault) {
        error = fault->message;
        g_error_free(fault);
        return false;
    }
    GstBin* bin = GST_BIN(pipeline.get());
    const GstHolder<GstElement> source(gst_bin_get_by_name(bin, "source"));
    const GstHolder<GstElement> file(gst_bin_get_by_name(bin, "file"));
    g_object_set(file.get(), "location", path.c_str(), nullptr);
    if (tags) {
        const GstHolder<GstElement> setter(gst_bin_get_by_interface(bin, GST_TYPE_TAG_SETTER));
        if (!setter) {
            error = "nothing takes tags";
            return false;
        }
        gst_tag_setter_merge_tags(GST_TAG_SETTER(setter.get()), tags, GST_TAG_MERGE_REPLACE);
    }

    gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
    constexpr size_t Block = 2 * 4410;
    for (size_t at = 0; at < interleaved.size(); at += Block) {
        const size_t count = std::min(Block, interleaved.size() - at);
        GstBuffer* buffer = gst_buffer_new_memdup(&interleaved[at], count * sizeof(float));
        GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(at / 2, GST_SECOND, 44100);
        GST_BUFFER_DURATION(buffer) = gst_util_uint64_scale(count / 2, GST_SECOND, 44100);
        gst_app_src_push_buffer(GST_APP_SRC(source.get()), buffer);
    }
    gst_app_src_end_of_stream(GST_APP_SRC(source.get()));
    const GstHolder<GstBus> bus(gst_element_get_bus(pipeline.get()));
    const GstHolder<GstMessage> message(gst_bus_timed_pop_filtered(bus.get(), 60 * GST_SECOND,
        static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR)));
    gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    if (message && GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_EOS)
        return true;
    error = "the pipeline failed";
    if (message) {
        gst_message_parse_error(message.get(), &fault, nullptr);
        error = fault->message;
        g_error_free(fault);
    }
    return false;
}
