#pragma once

#include "platform/PresenterSurface.h"

#include <cstdint>
#include <memory>

namespace pxvis {

class ConnectionBreaker;

// Stretches pictures itself and gives them to the X server: in memory that both share, or, for
// servers elsewhere, in requests. Null if the window isn't there, has no visual of 8 bits a colour
// in our own byte order, or, with `shared`, if the server can't share memory.
std::unique_ptr<PresenterSurface> MakeShmSurface(
    uintptr_t window, ConnectionBreaker& breaker, bool shared);

}
