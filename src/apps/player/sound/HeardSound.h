#pragma once

#include "host/analysis/AudioRecord.h"

namespace pxvis::player {

// What is to be heard at this moment, for the pictures. Asked by the thread that draws.
class HeardSound
{
public:
    // The record of now, with every beat and the highest level since the last call. False while the
    // pictures may rest: nothing plays, or it has been silent for some seconds.
    virtual bool Take(host::AudioRecord& record) = 0;

protected:
    ~HeardSound() = default;
};

}
