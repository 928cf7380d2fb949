#pragma once

#include "host/GStreamer.h"

#include <string>

namespace pxvis::player {

// Where sound can go. These wait for a sound server as long as it likes: not for the user-interface
// thread.

// The sound server's sink for that device, "" being the one that the system chooses, or a sound
// card's where no server answers. Ready, and to be set to NULL before it is released. Null: there
// is neither.
host::GstHolder<GstElement> MakeOutput(const std::string& device);

// Plays in time to nobody.
host::GstHolder<GstElement> MakeSilentOutput();

// Whether sound could be played there at this moment, tried by playing nothing.
bool CanPlay(const std::string& device);

// How the sound server and its mixers call our streams.
void NameStream(GstElement* pulseElement, const char* role);

}
