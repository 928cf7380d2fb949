#pragma once

#include <cstdint>

// Gives the keyboard to a window inside another program's top-level, now, and shortly after again:
// window managers hand it to the top-level when they see a click in it, or a dialog of it go. Where
// the user went on to another window by then, it stays there. The thread of the windows, in a
// process whose application is there. Internal.
void OQGiveInputFocus(uint32_t window);
