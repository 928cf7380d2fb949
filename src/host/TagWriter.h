#pragma once

#include <gst/gst.h>

#include <string>
#include <vector>

namespace pxvis::host {

// webmmux writes texts as they stand in a pipeline's description, with quotes, backslashes and
// octal numbers, and dates always with month and day. This puts them right in what the muxer gives
// out, at the length that it knows of. Outlives the muxer's work.
class WebmTags
{
public:
    // Sets a tag that the file is to hold as `plain`, UTF-8. Before Watch().
    void Set(GstTagSetter* setter, const char* tag, const GValue* value, const std::string& plain);
    void Watch(GstPad* muxerSource);

private:
    struct Text
    {
        std::string spelled; // by the muxer
        std::string plain;
    };

    GstPadProbeReturn PutRight(GstPadProbeInfo* info) const;

    std::vector<Text> m_texts;
};

// For mp4mux, which writes dates always with month and day.
void SetMp4Year(GstTagSetter* setter, const std::string& year);

}
