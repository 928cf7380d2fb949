#pragma once

#include "foundation/OQGeometry.h"

#include <cstdint>
#include <memory>

class IOQImage;

namespace pxvis {
class Presenter;
}

// Shows pictures in a window by a presenter, which is made at the first picture and kept. One that
// fails is made anew after a while. One thread, that of the window.
class CDXSurface
{
public:
    CDXSurface();
    ~CDXSurface();
    CDXSurface(const CDXSurface&) = delete;
    CDXSurface& operator=(const CDXSurface&) = delete;

    // Stretched over a window, an X11 window id, of that size in device pixels. The window may be
    // another one each time. False if the picture can't be shown.
    bool Present(IOQImage& image, uintptr_t window, OQSize client);

private:
    uintptr_t m_window = 0;
    std::unique_ptr<pxvis::Presenter> m_presenter;
    int64_t m_nextTry = 0; // ns, monotonic
};
