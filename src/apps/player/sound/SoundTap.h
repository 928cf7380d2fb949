#pragma once

#include <gst/gst.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace pxvis::host {
class LiveAnalysis;
}

namespace pxvis::player {

// Leaves a copy of all sound that comes to a pad with the analysis, under its running time and in
// the analysis' own format. Works on the thread that streams and keeps nothing; ends with the pad.
void TapSound(GstPad* pad, std::shared_ptr<host::LiveAnalysis> analysis);

// What it is by the pipeline's clock, in ns; none as long as the pipeline doesn't play. Any thread.
std::optional<int64_t> RunningTime(GstElement* pipeline);

}
