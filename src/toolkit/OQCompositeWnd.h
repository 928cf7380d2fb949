#pragma once

#include "toolkit/OQLayoutWnd.h"

// FIXME: child controls, their timers and labels come with the first controls.
class OQCompositeWnd : public OQLayoutWnd
{
public:
    using OQLayoutWnd::OQLayoutWnd;
};
