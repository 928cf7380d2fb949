#include "host/OpusStream.h"

namespace pxvis::host {

std::optional<uint32_t> OpusSkip(const GstCaps* caps)
{
    const GValue* headers
        = caps ? gst_structure_get_value(gst_caps_get_structure(caps, 0), "streamheader") : nullptr;
    if (!headers || !GST_VALUE_HOLDS_ARRAY(headers) || gst_value_array_get_size(headers) == 0)
        return {};
    unsigned char head[12] = {};
    GstBuffer* buffer = gst_value_get_buffer(gst_value_array_get_value(headers, 0));
    if (!buffer || gst_buffer_extract(buffer, 0, head, sizeof(head)) != sizeof(head))
        return {};
    return head[10] | static_cast<uint32_t>(head[11]) << 8;
}

uint32_t OpusPacketSamples(GstBuffer* packet)
{
    unsigned char head[2] = {};
    gst_buffer_extract(packet, 0, head, sizeof(head));
    static constexpr uint32_t silk[] = { 480, 960, 1920, 2880 };
    static constexpr uint32_t celt[] = { 120, 240, 480, 960 };
    const int config = head[0] >> 3;
    const uint32_t frame = config < 12 ? silk[config & 3]
        : config < 16                  ? silk[config & 1]
                                       : celt[config & 3];
    const uint32_t code = head[0] & 3;
    return frame * (code == 0 ? 1 : code == 3 ? head[1] & 63 : 2);
}

}
