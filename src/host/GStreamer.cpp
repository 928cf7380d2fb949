#include "host/GStreamer.h"

#include <gst/pbutils/pbutils.h>

#include <atomic>
#include <cstring>
#include <mutex>

namespace pxvis::host {

namespace {

// Damaged files make plug-ins complain about themselves on standard error; what matters comes as a
// message.
void LeaveOut(const char*, GLogLevelFlags, const char*, void*) { }

}

bool InitializeGStreamer(std::string& error)
{
    static std::once_flag once;
    static std::string fault;
    std::call_once(once, [] {
        GError* failure = nullptr;
        if (gst_init_check(nullptr, nullptr, &failure)) {
            gst_pb_utils_init();
            constexpr auto levels
                = static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING);
            for (const char* domain : { "GStreamer", "GStreamer-Audio", "GStreamer-Base",
                     "GStreamer-PbUtils", "GStreamer-Tag", "GStreamer-Video" })
                g_log_set_handler(domain, levels, LeaveOut, nullptr);
            return;
        }
        const GstHolder<GError> holder(failure);
        fault
            = "GStreamer cannot start: " + OneLine(failure ? failure->message : "no reason given");
    });
    error = fault;
    return fault.empty();
}

std::string OneLine(const char* text)
{
    constexpr size_t limit = 300;
    std::string line;
    for (; text && *text && line.size() < limit; ++text) {
        const bool control = static_cast<unsigned char>(*text) < ' ' || *text == 0x7F;
        if (!control)
            line += *text;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
    return line;
}

bool HasClass(GstElementFactory* factory, const char* word)
{
    const char* classes = gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_KLASS);
    return classes && std::strstr(classes, word);
}

bool ServesSound(GstElementFactory* factory)
{
    if (HasClass(factory, "Adaptive") || HasClass(factory, "Subtitle"))
        return false;
    const bool decodes = HasClass(factory, "Decoder");
    return !decodes || !(HasClass(factory, "Video") || HasClass(factory, "Image"));
}

int SelectForSound(GstElement*, GstPad*, GstCaps*, GstElementFactory* factory, void* hasStreams)
{
    enum
    {
        Try,
        Expose,
        Skip
    };

    if (!ServesSound(factory))
        return Skip;
    if (HasClass(factory, "Demux") && !HasClass(factory, "Metadata"))
        *static_cast<std::atomic<bool>*>(hasStreams) = true;
    return Try;
}

std::string MissingPlugin(GstMessage* message)
{
    const GValue* detail = gst_structure_get_value(gst_message_get_structure(message), "detail");
    if (detail && GST_VALUE_HOLDS_CAPS(detail)) {
        const GstCaps* caps = gst_value_get_caps(detail);
        if (gst_caps_get_size(caps) > 0) {
            const GstStructure* format = gst_caps_get_structure(caps, 0);
            const char* type = gst_structure_get_name(format);
            if (!g_str_has_prefix(type, "audio/") && !g_str_has_prefix(type, "video/"))
                return {};
            // What GStreamer has no name for either is called as in the file.
            constexpr const char* unnamed = "audio/x-gst-fourcc-";
            const char* name = gst_structure_get_string(format, "codec-id");
            if (!name && g_str_has_prefix(type, unnamed))
                name = type + std::strlen(unnamed);
            if (name)
                return OneLine(name);
        }
    }
    const GstHolder<char> description(gst_missing_plugin_message_get_description(message));
    return OneLine(description.get());
}

}
