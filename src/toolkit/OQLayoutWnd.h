#pragma once

#include "toolkit/OQCoreWnd.h"

// The size that a window asks for.
class OQLayoutWnd : public OQCoreWnd
{
public:
    using OQCoreWnd::OQCoreWnd;

    // In device pixels; 0 where it doesn't mind. FIXME: nothing asks until there are layouts.
    virtual OQSize GetLayoutSize() const { return {}; }

    // A length at 100 % in device pixels, by the display scale of the tools module; without that
    // module itself.
    static int32_t Scale(int32_t length);
};
