#pragma once

#include "platform/PresenterPicture.h"

#include <cstdint>
#include <memory>

namespace pxvis {

class PresenterThread;

// Shows finished pictures in a window of X, from a thread with a connection of its own, so that
// neither the caller's thread nor another user of GL in the process notices. The pictures appear in
// a child window that lies over the whole of the given one and takes no input: events reach the
// window beneath as if nothing were there. Owned by who paints the window; one thread at a time.
// The window may go at any time, before or after the presenter.
//
// Ways to show a picture are tried in this order, the next one when one fails: EGL, unless it is
// the processor that draws for it, which costs several times what the second way does; shared
// memory with the X server; pictures sent to the server. The variable
// PXVIS_PRESENT=egl|shm|put|none allows one of them only, or none.
class Presenter
{
public:
    explicit Presenter(uintptr_t window); // X's id of it, on the display that DISPLAY names

    // Returns within a second, also when the X server or a driver doesn't answer: a thread that is
    // stuck there is left behind.
    ~Presenter();

    Presenter(const Presenter&) = delete;
    Presenter& operator=(const Presenter&) = delete;

    // Hands over a picture, which is copied, to be shown stretched over the whole client area of
    // width x height device pixels. One may wait behind the one that is being shown, so that a
    // frame that takes longer holds up nobody; where there is one, waits for its turn to come for
    // at most 17 ms and takes its place then. A picture or an area without pixels shows nothing
    // new. False once presenting is impossible: no way works, or the window or the display is gone.
    // False, too, for a picture of more than 16384 pixels a side or 64 * 2^20 in all, an area of
    // more than 32767 pixels a side, and without memory.
    bool Present(const PresenterPicture& picture, int32_t width, int32_t height);

    // "EGL", "MIT-SHM" or "XPutImage"; empty before the first picture is shown and once presenting
    // is impossible.
    const char* Method() const;

private:
    std::unique_ptr<PresenterThread> m_thread;
};

}
