#pragma once

#include "host/TrackTags.h"

#include <atomic>
#include <string>

namespace pxvis::player {

// How long one file may take, in ms; and how many that took longer may still be at it before no
// more are tried.
constexpr int longestTagRead = 5000;
constexpr int mostStuckTagReads = 8;

// Reads what a local song says about itself, without decoding it. False, with what was found so
// far, for a file that isn't one, is damaged or takes too long, and soon after `stop` has become
// true. Any thread.
bool ReadSongTags(const std::string& path, const std::atomic<bool>& stop, host::SongInfo& info);

}
