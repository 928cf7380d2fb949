#pragma once

#include "host/GStreamer.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

namespace pxvis::host {

// Leads a song's encoded sound into a muxer as it is. Belongs to a pipeline's owner, who stops the
// pipeline before this goes away.
class SoundCopy
{
public:
    // The muxer's pad must be free; start is where in the song the copy begins. False with a reason
    // when a plug-in is missing.
    bool Build(GstBin* pipeline, GstPad* muxerPad, const std::string& songPath, GstClockTime start,
        std::string& error);

    // Once the pipeline plays: until the song's kind is known and led on. False with a reason when
    // the file can't be read or the muxer can't hold its sound.
    bool WaitForSound(GstBus* bus, std::string& error);

    // Sound behind that length is read but not stored any more.
    void EndAfter(GstClockTime length);

    // Samples stored before what is to be heard, at the given rate. Once sound has come through.
    uint32_t Skip(uint32_t rate) const;

private:
    void LinkSound(GstPad* pad);
    bool LinkThrough(GstPad* pad, const char* parser);
    GstPadProbeReturn Adjust(GstPad* pad, GstPadProbeInfo* info);
    bool BeginSound(GstPad* pad, GstBuffer* first);
    void WatchElement(GstElement* element);
    uint32_t RunUp(uint32_t rate) const;

    GstBin* m_pipeline = nullptr; // both outlive this
    GstElement* m_source = nullptr;
    GstPad* m_muxerPad = nullptr;
    std::string m_songPath;
    GstClockTime m_start = 0;

    // Of the one streaming thread, until the pipeline stands still.
    bool m_begun = false;
    bool m_opus = false;
    bool m_mp3 = false;
    bool m_inContainer = false; // which then tells where the song starts
    int m_mp3Rate = 0; // samples a second of a bare mp3 stream
    uint64_t m_mp3Samples = 0; // of the packets so far
    uint32_t m_mp3Skip = 0;
    GstClockTime m_segmentStart = 0;
    GstClockTime m_firstTime = GST_CLOCK_TIME_NONE;
    GstClockTime m_firstKept = GST_CLOCK_TIME_NONE; // since the stream's first packet
    uint64_t m_opusSamples = 0;
    std::optional<uint32_t> m_opusSkip; // as the stream's own header says

    std::atomic<GstClockTime> m_end = GST_CLOCK_TIME_NONE;
};

}
