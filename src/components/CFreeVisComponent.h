#pragma once

#include "components/CRowVisComponent.h"

// Base of the components that take their positions from each frame's picture: another rectangle
// doesn't prepare them anew, so that their equations run on through a resize.
class CFreeVisComponent : public CRowVisComponent
{
public:
    int32_t SetRect(const OQRect& rect) override
    {
        m_rect = rect;
        return 0;
    }
};
