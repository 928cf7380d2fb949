#include "host/analysis/Mp3Trim.h"

#include <cstring>

namespace pxvis::host {

namespace {

constexpr int DecoderDelay = 529; // of every layer III filter bank
constexpr int UsualEncoderDelay = 576;

uint32_t BigEndian(const unsigned char* bytes)
{
    return uint32_t { bytes[0] } << 24 | uint32_t { bytes[1] } << 16 | uint32_t { bytes[2] } << 8
        | uint32_t { bytes[3] };
}

}

Mp3Trim ReadMp3Trim(const unsigned char* frame, size_t size)
{
    Mp3Trim trim;
    if (size < 4 || frame[0] != 0xFF || (frame[1] & 0xE6) != 0xE2)
        return trim;
    trim.isLayer3 = true;
    trim.start = UsualEncoderDelay + DecoderDelay;

    // The header stands behind the side information, whose size the version and the channels give.
    const bool version1 = (frame[1] & 0x18) == 0x18;
    const bool mono = (frame[3] & 0xC0) == 0xC0;
    const size_t sideInformation = version1 ? (mono ? 17 : 32) : (mono ? 9 : 17);
    size_t at = 4 + sideInformation;
    if (size < at + 8
        || (std::memcmp(frame + at, "Xing", 4) != 0 && std::memcmp(frame + at, "Info", 4) != 0))
        return trim;
    trim.isHeaderFrame = true;
    const uint32_t fields = BigEndian(frame + at + 4);
    at += 8;
    const size_t countAt = at;
    constexpr size_t fieldSizes[] = { 4, 4, 100, 4 }; // frames, bytes, seek table, quality
    for (int field = 0; field < 4; ++field) {
        if (fields & 1u << field)
            at += fieldSizes[field];
    }

    // The encoder's name in 9 bytes, 12 bytes of other things, then delay and padding of 12 bits
    // each.
    if (size < at + 24 || frame[at] == 0)
        return trim;
    const int delay = frame[at + 21] << 4 | frame[at + 22] >> 4;
    const int padding = (frame[at + 22] & 0x0F) << 8 | frame[at + 23];
    trim.start = delay + DecoderDelay;
    if (fields & 1) {
        const int64_t samplesPerFrame = version1 ? 1152 : 576;
        const int64_t length = BigEndian(frame + countAt) * samplesPerFrame - delay - padding;
        // Cut copies keep the count of the whole or none at all.
        if (length > 0)
            trim.length = length;
    }
    return trim;
}

}
