#include "host/TagReader.h"

#include "host/GStreamer.h"

#include <gst/tag/tag.h>

#include <cstring>

namespace pxvis::host {

namespace {

std::string Cut(const char* text)
{
    size_t length = strnlen(text, TrackTags::TextLimit + 1);
    if (length > TrackTags::TextLimit) {
        // Back to the start of a character.
        length = TrackTags::TextLimit;
        while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
            --length;
    }
    return std::string(text, length);
}

// These give whether they took something.

bool TakeText(const GstTagList* tags, const char* tag, std::string& text)
{
    char* value = nullptr;
    if (!text.empty() || !gst_tag_list_get_string(tags, tag, &value))
        return false;
    const GstHolder<char> holder(value);
    text = Cut(value);
    return !text.empty();
}

bool TakeNumber(const GstTagList* tags, const char* tag, int& number)
{
    guint value = 0;
    if (number != 0 || !gst_tag_list_get_uint(tags, tag, &value))
        return false;
    number = static_cast<int>(value & 0x7FFFFFFF);
    return number != 0;
}

// Where GStreamer has no tag of its own for a field of the file, it gives "KEY=text" or
// "KEY[language]=text".
bool TakeLyrics(const GstTagList* tags, std::string& lyrics)
{
    if (!lyrics.empty())
        return false;
    TakeText(tags, GST_TAG_LYRICS, lyrics);
    const guint count = gst_tag_list_get_tag_size(tags, GST_TAG_EXTENDED_COMMENT);
    for (guint i = 0; i < count && lyrics.empty(); ++i) {
        const char* comment = nullptr;
        if (!gst_tag_list_peek_string_index(tags, GST_TAG_EXTENDED_COMMENT, i, &comment))
            continue;
        const char* equals = std::strchr(comment, '=');
        const size_t key = std::strcspn(comment, "[=");
        for (const char* name : { "LYRICS", "UNSYNCEDLYRICS", "USLT" }) {
            if (equals && key == std::strlen(name) && g_ascii_strncasecmp(comment, name, key) == 0)
                lyrics = Cut(equals + 1);
        }
    }
    return !lyrics.empty();
}

bool TakeYear(const GstTagList* tags, std::string& year)
{
    if (!year.empty())
        return false;
    GstDateTime* time = nullptr;
    if (gst_tag_list_get_date_time(tags, GST_TAG_DATE_TIME, &time)) {
        if (gst_date_time_has_year(time))
            year = std::to_string(gst_date_time_get_year(time));
        gst_date_time_unref(time);
        return !year.empty();
    }
    GDate* date = nullptr;
    if (gst_tag_list_get_date(tags, GST_TAG_DATE, &date)) {
        if (g_date_valid(date))
            year = std::to_string(g_date_get_year(date));
        g_date_free(date);
    }
    return !year.empty();
}

bool IsFrontCover(GstSample* sample)
{
    const GstStructure* info = gst_sample_get_info(sample);
    int type = GST_TAG_IMAGE_TYPE_UNDEFINED;
    return info && gst_structure_get_enum(info, "image-type", GST_TYPE_TAG_IMAGE_TYPE, &type)
        && type == GST_TAG_IMAGE_TYPE_FRONT_COVER;
}

// False for what is no image or too large.
bool TakeCover(GstSample* sample, TrackTags& tags)
{
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    GstCaps* caps = gst_sample_get_caps(sample);
    if (!buffer || !caps || gst_caps_is_empty(caps))
        return false;
    const char* type = gst_structure_get_name(gst_caps_get_structure(caps, 0));
    const size_t size = gst_buffer_get_size(buffer);
    if (!g_str_has_prefix(type, "image/") || size == 0 || size > TrackTags::CoverLimit)
        return false;
    tags.cover.resize(size);
    gst_buffer_extract(buffer, 0, tags.cover.data(), size);
    tags.coverType = type;
    return true;
}

bool TakeCover(const GstTagList* list, const char* tag, TrackTags& tags)
{
    if (!tags.cover.empty())
        return false;
    const guint count = gst_tag_list_get_tag_size(list, tag);
    for (const bool frontOnly : { true, false }) {
        for (guint i = 0; i < count; ++i) {
            GstSample* sample = nullptr;
            if (!gst_tag_list_get_sample_index(list, tag, i, &sample))
                continue;
            const GstHolder<GstSample> holder(sample);
            if (frontOnly && !IsFrontCover(sample))
                continue;
            if (TakeCover(sample, tags))
                return true;
        }
    }
    return false;
}

}

bool MergeTags(const GstTagList* list, SongInfo& info)
{
    TrackTags& tags = info.tags;
    bool isMore = TakeText(list, GST_TAG_ARTIST, tags.artist);
    isMore |= TakeText(list, GST_TAG_ALBUM, tags.album);
    isMore |= TakeText(list, GST_TAG_TITLE, tags.title);
    isMore |= TakeText(list, GST_TAG_GENRE, tags.genre);
    isMore |= TakeText(list, GST_TAG_COMMENT, tags.notes);
    isMore |= TakeNumber(list, GST_TAG_TRACK_NUMBER, tags.trackNumber);
    isMore |= TakeLyrics(list, tags.lyrics);
    isMore |= TakeYear(list, tags.year);
    isMore |= TakeCover(list, GST_TAG_IMAGE, tags);
    isMore |= TakeCover(list, GST_TAG_PREVIEW_IMAGE, tags);
    isMore |= TakeNumber(list, GST_TAG_NOMINAL_BITRATE, info.bitRate);
    isMore |= TakeNumber(list, GST_TAG_BITRATE, info.bitRate);
    return isMore;
}

}
