#pragma once

#include <gst/gst.h>

#include <cstdint>
#include <optional>

namespace pxvis::host {

constexpr uint32_t OpusRate = 48000; // of every Opus stream, whatever went in
constexpr uint32_t OpusUsualSkip = 312; // the run-up of the common encoder

// The run-up before the sound, in samples, as the stream's own header in the caps states it
// (RFC 7845, 5.1).
std::optional<uint32_t> OpusSkip(const GstCaps* caps);

// Samples a channel in a coded packet (RFC 6716, 3.1).
uint32_t OpusPacketSamples(GstBuffer* packet);

}
