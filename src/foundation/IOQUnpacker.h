#pragma once

#include "foundation/OQChar.h"

#include <cstdint>

// Told how far unpacking has come, on the thread that unpacks. Slots: add at the end only.
class IOQUnpackProgress
{
public:
    // Bytes of the archive. False: unpack no more.
    virtual bool OnProgress(int64_t done, int64_t all) = 0;

protected:
    ~IOQUnpackProgress() = default;
};

enum OQUnpackResult : int32_t
{
    OQUnpackDone = 0,
    OQUnpackCancelled = 1,
    OQUnpackNoArchive = 2, // no file of a kind that is known
    OQUnpackDamaged = 3,
    OQUnpackRefused = 4, // holds what leads out of the folder: links, devices, ".."
    OQUnpackTooMuch = 5, // past one of the limits
    OQUnpackFailed = 6, // the folder is in use, or can't be written
};

// Puts what archives hold into folders. A service of the tools module: any thread, nothing is
// thrown. Slots: add at the end only.
class IOQUnpacker
{
public:
    // `archive`: zip, or tar, which gzip, bzip2, xz or zstd may have packed. `folder`: isn't there
    // or is empty, and the folder that it lies in is there. It appears with all that the archive
    // holds, or stays as it is. `progress` may be null. Gives an OQUnpackResult.
    virtual int32_t Unpack(const OQChar* archive, const OQChar* folder, IOQUnpackProgress* progress)
        = 0;

protected:
    ~IOQUnpacker() = default;
};
