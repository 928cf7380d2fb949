#pragma once

#include "apps/player/sound/HeardSound.h"

// What a test lets be heard.
struct FakeSound final : pxvis::player::HeardSound
{
    bool Take(pxvis::host::AudioRecord& heard) override
    {
        ++taken;
        if (plays)
            heard = record;
        return plays;
    }

    pxvis::host::AudioRecord record;
    bool plays = true;
    int taken = 0;
};
