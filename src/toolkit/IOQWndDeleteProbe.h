#pragma once

class OQCoreWnd;

// Learns that a window's object goes. Registered with OQCoreWnd::AddDeleteProbe, and forgotten
// there once it was told.
class IOQWndDeleteProbe
{
public:
    // Nothing of the window but its address may be used.
    virtual void OnWndDeleted(OQCoreWnd* wnd) = 0;

protected:
    ~IOQWndDeleteProbe() = default;
};
