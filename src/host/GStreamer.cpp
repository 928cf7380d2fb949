#include "host/GStreamer.h"

#include <gst/pbutils/pbutils.h>

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

}
