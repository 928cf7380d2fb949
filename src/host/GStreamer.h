#pragma once

#include <gst/gst.h>

#include <memory>
#include <string>

namespace pxvis::host {

// Once a process, from any thread; false with a reason in one line when GStreamer can't start.
bool InitializeGStreamer(std::string& error);

// Joins lines and bounds the length: GStreamer's messages end up in our one-line errors.
std::string OneLine(const char* text);

// Whether the word is in an element's classification, "Codec/Demuxer/Audio".
bool HasClass(GstElementFactory* factory, const char* word);

// Whether decoding a song may want the element. Leaves out what has nothing to do with sound, such
// as a cover's decoder, and whatever would follow an address in the file to another place.
bool ServesSound(GstElementFactory* factory);

// For the signal "autoplug-select" of what decodes a song: leaves out what ServesSound does.
// `hasStreams`, an atomic<bool>, becomes true with a file of known form, which streams are taken
// out of.
int SelectForSound(
    GstElement* decoder, GstPad* pad, GstCaps* caps, GstElementFactory* factory, void* hasStreams);

// Of a missing-plugin message, what could be installed for the song; empty where that would not
// help: typefinding knows many things that are no music.
std::string MissingPlugin(GstMessage* message);

struct GstRelease
{
    void operator()(GstElement* element) const { gst_object_unref(element); }

    void operator()(GstBus* bus) const { gst_object_unref(bus); }

    void operator()(GstPad* pad) const { gst_object_unref(pad); }

    void operator()(GstSample* sample) const { gst_sample_unref(sample); }

    void operator()(GstMessage* message) const { gst_message_unref(message); }

    void operator()(GstCaps* caps) const { gst_caps_unref(caps); }

    void operator()(GstBuffer* buffer) const { gst_buffer_unref(buffer); }

    void operator()(GstTagList* tags) const { gst_tag_list_unref(tags); }

    void operator()(GError* error) const { g_error_free(error); }

    void operator()(char* text) const { g_free(text); }
};

template <typename T>
using GstHolder = std::unique_ptr<T, GstRelease>;

}
