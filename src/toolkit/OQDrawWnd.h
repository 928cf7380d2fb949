#pragma once

#include "toolkit/OQSystemWnd.h"

// A window with a background of its own.
class OQDrawWnd : public OQSystemWnd
{
public:
    using OQSystemWnd::OQSystemWnd;

    // The theme's colour for controls; grey without the tools module.
    // FIXME: the theme's element "DialogBack" of the group "Frame" where the theme has it.
    void OnPaint(IOQPaint& paint) override;
};
