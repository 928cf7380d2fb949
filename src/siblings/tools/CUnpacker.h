#pragma once

#include "foundation/IOQUnpacker.h"

#include <cstdint>

// By libarchive. Archives come from strangers: what could lead out of the folder is not passed over
// but refuses the whole archive, and what an archive may grow to is bounded.
class CUnpacker final : public IOQUnpacker
{
public:
    static constexpr int64_t kMaxEntries = 100'000; // files, and folders with or without entries
    static constexpr int64_t kMaxBytes = int64_t { 1 } << 31; // in all files together
    static constexpr int64_t kMaxRatio = 250; // of them to the archive's own ...
    static constexpr int64_t kAnyRatioBytes = 16 << 20; // ... once there are more than these

    // What else there may be unpacked, such as headers; time and memory go by that, too.
    static constexpr int64_t kMaxBytesAnEntry = 2048;

    int32_t Unpack(
        const OQChar* archive, const OQChar* folder, IOQUnpackProgress* progress) override;
};
