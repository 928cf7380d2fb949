#pragma once

#include "toolkit/OQWndEvents.h"

// The root of all windows and controls. Its address is its identity.
class OQWnd : public OQWndEvents
{
public:
    OQWnd() = default;
    OQWnd(const OQWnd&) = delete;
    OQWnd& operator=(const OQWnd&) = delete;
};
