#include "host/TagWriter.h"

#include "host/GStreamer.h"

#include <cstdint>
#include <string_view>

namespace pxvis::host {

namespace {

constexpr std::string_view tagString = "\x44\x87"; // the EBML element's ID

void AppendBytes(std::string& bytes, uint64_t number, size_t count)
{
    for (size_t i = count; i-- > 0;)
        bytes += static_cast<char>(number >> 8 * i & 0xFF);
}

// EBML's length of an element; the highest bit that is set tells its width.
void AppendLength(std::string& bytes, uint64_t length, size_t width)
{
    AppendBytes(bytes, length | uint64_t { 1 } << 7 * width, width);
}

// A "Void" element of `size` bytes in all, 2 at least.
void AppendVoid(std::string& bytes, size_t size)
{
    const size_t width = size < 128 ? 1 : 8;
    bytes += '\xEC';
    AppendLength(bytes, size - 1 - width, width);
    bytes.append(size - 1 - width, '\0');
}

}

void WebmTags::Set(
    GstTagSetter* setter, const char* tag, const GValue* value, const std::string& plain)
{
    const GstHolder<char> spelled(gst_value_serialize(value));
    // A Void element needs two bytes; quotes and backslashes are never fewer.
    if (!spelled)
        return;
    gst_tag_setter_add_tag_value(setter, GST_TAG_MERGE_REPLACE, tag, value);
    if (std::string_view(spelled.get()).size() >= plain.size() + 2)
        m_texts.push_back({ spelled.get(), plain });
}

void WebmTags::Watch(GstPad* muxerSource)
{
    const auto putRight = +[](GstPad*, GstPadProbeInfo* info, void* self) {
        return static_cast<const WebmTags*>(self)->PutRight(info);
    };
    gst_pad_add_probe(muxerSource, GST_PAD_PROBE_TYPE_BUFFER, putRight, this, nullptr);
}

// Runs on the muxer's thread. It gives out each such element, with a zero behind the text, as a
// buffer of its own.
GstPadProbeReturn WebmTags::PutRight(GstPadProbeInfo* info) const
{
    GstBuffer* buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    const size_t size = gst_buffer_get_size(buffer);
    for (const Text& text : m_texts) {
        const size_t body = text.spelled.size() + 1;
        if (size <= body + tagString.size() || size > body + tagString.size() + 8
            || gst_buffer_memcmp(buffer, 0, tagString.data(), tagString.size()) != 0
            || gst_buffer_memcmp(buffer, size - body, text.spelled.c_str(), body) != 0)
            continue;
        std::string bytes(tagString);
        AppendLength(bytes, text.plain.size(), size - body - tagString.size());
        bytes += text.plain;
        AppendVoid(bytes, size - bytes.size());
        GstBuffer* plain = gst_buffer_make_writable(buffer);
        gst_buffer_fill(plain, 0, bytes.data(), bytes.size());
        GST_PAD_PROBE_INFO_DATA(info) = plain;
        break;
    }
    return GST_PAD_PROBE_OK;
}

void SetMp4Year(GstTagSetter* setter, const std::string& year)
{
    // The whole box, which mp4mux takes over: "\251day" with a "data" box of UTF-8 (1) in no
    // language (0).
    std::string box;
    AppendBytes(box, year.size() + 24, 4);
    box += "\251day";
    AppendBytes(box, year.size() + 16, 4);
    box += "data";
    AppendBytes(box, 1, 4);
    AppendBytes(box, 0, 4);
    box += year;
    const GstHolder<GstBuffer> bytes(gst_buffer_new_memdup(box.data(), box.size()));
    const GstHolder<GstSample> sample(gst_sample_new(bytes.get(), nullptr, nullptr,
        gst_structure_new("private-qt-tag", "style", G_TYPE_STRING, "itunes", nullptr)));
    gst_tag_setter_add_tags(setter, GST_TAG_MERGE_APPEND, "private-qt-tag", sample.get(), nullptr);
}

}
