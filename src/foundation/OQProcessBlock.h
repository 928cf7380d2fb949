#pragma once

#include "foundation/OQFolders.h"

#include <atomic>
#include <cstdint>
#include <string>

// What the modules of one process share about it, in memory that they find by the process's name.
// The first one that gets there fills it, once; the others read. No module is ever loaded from a
// folder that stands here.
struct OQProcessBlock
{
    static constexpr uint32_t Version = 1;
    static constexpr int FieldLength = 261; // characters, with the zero at the end

    // The last one to be stored: 0 until all of the rest is in place.
    std::atomic<uint32_t> version;
    OQChar install[FieldLength];
    OQChar data[FieldLength];
    OQChar module[FieldLength];
    OQChar applicationData[FieldLength];
    uint32_t portable;
    uint8_t reserved[1088]; // zeros

    // A folder that doesn't fit is marked as such.
    void Fill(const OQProcessFolders& folders);

    // Replaces what the block has by it; a folder that isn't in it stays as it is. False, with all
    // as it was, for a block that isn't filled or of another version.
    bool Read(OQProcessFolders& folders) const;

    // Of the calling process and its program: no other one, now or later, has a block of this name.
    static std::string GetName();

    // Is this the name of a block whose process is gone, or goes on with another program, having
    // had no time to take it away?
    static bool IsLeftOver(const std::string& name);
};

static_assert(sizeof(OQProcessBlock) == 3184);
static_assert(std::atomic<uint32_t>::is_always_lock_free);
