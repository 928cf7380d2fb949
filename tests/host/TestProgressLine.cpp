#include "host/ProgressLine.h"

#include <doctest/doctest.h>

using pxvis::host::FormatProgress;
using pxvis::host::Progress;

TEST_CASE("A progress line shows share, bar, time left and speed, and drops what has no room")
{
    const Progress half { 1500, 3000, 60, 10 };
    CHECK(FormatProgress(half, 79)
        == " 50 % [####################--------------------]  0:10 left  2.5x  150 fps");
    CHECK(FormatProgress(half, 50) == " 50 % [########--------]  0:10 left  2.5x  150 fps");
    CHECK(FormatProgress(half, 35) == " 50 %  0:10 left  2.5x  150 fps");
    CHECK(FormatProgress(half, 25) == " 50 %  0:10 left  2.5x");
    CHECK(FormatProgress(half, 9) == " 50 %");
    CHECK(FormatProgress(half, 3) == " 50");
    CHECK(FormatProgress(half, -1) == "");
    for (int width = 0; width < 200; ++width)
        CHECK(static_cast<int>(FormatProgress(half, width).size()) <= width);
}

TEST_CASE("A progress line keeps sense at the ends and with odd numbers")
{
    CHECK(FormatProgress({ 0, 3000, 60, 0 }, 30) == "  0 % [----------------------]");
    CHECK(FormatProgress({ 3000, 3000, 60, 100 }, 40) == "100 %  0:00 left  0.50x  30 fps");
    CHECK(FormatProgress({ 3100, 3000, 60, 100 }, 25) == "100 %  0:00 left  0.52x");
    CHECK(FormatProgress({ 2999, 3000, 60, 100 }, 5) == " 99 %");
    CHECK(FormatProgress({ 7, 0, 60, 1 }, 40) == "7 pictures  0.12x  7.0 fps");
    // 1.5 pictures a second: 86,399 more take 15:59:59.
    CHECK(FormatProgress({ 1, 86400, 30, 2.0 / 3 }, 21) == "  0 %  15:59:59 left");
    CHECK(FormatProgress({ 1, 3601, 30, 1 }, 19) == "  0 %  1:00:00 left");
}
