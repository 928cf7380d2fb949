#pragma once

#include "host/TrackTags.h"

#include <gst/gst.h>

namespace pxvis::host {

// Takes over what `info` doesn't know yet; the front cover wins over other pictures. False if there
// was nothing.
bool MergeTags(const GstTagList* tags, SongInfo& info);

}
