#include "apps/player/collection/PlayMeter.h"

#include <doctest/doctest.h>

using pxvis::player::PlayMeter;

namespace {

// A song that is heard from a place on, with a look at it four times a second.
struct Listener
{
    bool Hear(qint64 milliseconds)
    {
        bool isPlayed = false;
        for (qint64 heard = 0; heard < milliseconds; heard += 250)
            isPlayed |= meter.Note(position += 250, duration, now += 250);
        return isPlayed;
    }

    PlayMeter meter;
    qint64 position = 0;
    qint64 duration = 60'000;
    qint64 now = 1'000'000;
};

}

TEST_CASE("A song counts as played once, when half of it or four minutes were heard")
{
    Listener listener;
    listener.meter.Start(0, listener.now);
    CHECK_FALSE(listener.Hear(29'750));
    CHECK(listener.Hear(250));
    listener.position = 0;
    CHECK_FALSE(listener.Hear(60'000));
    CHECK_FALSE(listener.meter.NoteEnd(listener.now));

    listener.meter.Start(0, listener.now);
    listener.position = 0;
    CHECK(listener.Hear(60'000));

    for (const qint64 duration : { -1, 3'600'000 }) {
        Listener longOne;
        longOne.duration = duration;
        longOne.meter.Start(0, longOne.now);
        CHECK_FALSE(longOne.Hear(239'750));
        CHECK(longOne.Hear(250));
    }
}

TEST_CASE("What is skipped wasn't heard, nor is a pause")
{
    Listener listener;
    listener.meter.Start(0, listener.now);
    CHECK_FALSE(listener.Hear(5000));
    listener.position = 59'000;
    CHECK_FALSE(listener.Hear(1000));
    CHECK_FALSE(listener.meter.NoteEnd(listener.now));
    listener.position = 20'000;
    CHECK_FALSE(listener.Hear(15'000));
    listener.now += 3'600'000;
    CHECK_FALSE(listener.Hear(5000));
    CHECK(listener.Hear(5000));
}

TEST_CASE("A song that ends before anybody looked, or whose length nobody knew, was played")
{
    PlayMeter meter;
    meter.Start(0, 0);
    CHECK_FALSE(meter.Note(10, 400, 10));
    CHECK(meter.NoteEnd(410));
    meter.Start(0, 0);
    CHECK_FALSE(meter.Note(900, -1, 900));
    CHECK(meter.NoteEnd(1000));
    meter.Start(50'000, 0); // gone on with
    CHECK_FALSE(meter.Note(50'250, 60'000, 250));
    CHECK_FALSE(meter.NoteEnd(10'000));
}
