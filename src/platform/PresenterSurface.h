#pragma once

#include "platform/PresenterPicture.h"

#include <cstdint>
#include <memory>

namespace pxvis {

enum class ShowResult
{
    Shown,
    MethodFailed, // another way may work
    WindowGone, // none will
};

// One way to show pictures in a window. Made, used and destroyed by the presenter's thread.
class PresenterSurface
{
public:
    virtual ~PresenterSurface() = default;

    // Shows the picture stretched over width x height pixels; all sizes are at least 1 and within
    // the presenter's limits.
    virtual ShowResult Show(const PresenterPicture& picture, int32_t width, int32_t height) = 0;

    // Whether some of the window has lost since the last Show what it showed, as one that was
    // covered has. Waits for nothing, and tells nothing of a window that is gone.
    virtual bool IsExposed() = 0;

    virtual const char* Method() const = 0; // constant text
};

// Makes the surfaces of one window, the best first. Owned by the presenter's thread.
class PresenterSurfaceSource
{
public:
    virtual ~PresenterSurfaceSource() = default;

    // The next surface to try, once the one before is destroyed; null if there are no more.
    virtual std::unique_ptr<PresenterSurface> Next() = 0;

    // Ends whatever a surface waits for, which makes it fail, and lets there be no more of them.
    // Any thread.
    virtual void Break() = 0;
};

}
