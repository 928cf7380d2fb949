#pragma once

#include "platform/PresenterSurface.h"

#include <cstdint>
#include <memory>

namespace pxvis {

class ConnectionBreaker;

// Shows pictures by OpenGL: one texture stretched over the window. Null if the window isn't there,
// EGL can't be had for it, or, unless `takesSoftware`, its OpenGL is drawn by the processor. Its
// context is current on the calling thread until it is destroyed, by that thread; the EGL display
// is that of a private connection, hence no one else's.
std::unique_ptr<PresenterSurface> MakeEglSurface(
    uintptr_t window, ConnectionBreaker& breaker, bool takesSoftware);

}
