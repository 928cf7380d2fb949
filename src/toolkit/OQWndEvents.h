#pragma once

#include "foundation/OQGeometry.h"
#include "foundation/OQString.h"

#include <cstdint>

class IOQPaint;

enum class OQMouseAction : int32_t
{
    Move = 0,
    Press = 1,
    Release = 2,
    DoubleClick = 3, // in place of the second press
    Wheel = 4,
    Enter = 5,
    Leave = 6, // the position is the last one
};

enum OQMouseButton : int32_t
{
    OQMouseNone = 0,
    OQMouseLeft = 1,
    OQMouseRight = 2,
    OQMouseMiddle = 3,
};

enum OQModifiers : uint32_t
{
    OQModifierShift = 1,
    OQModifierControl = 2,
    OQModifierAlt = 4,
};

struct OQMouseEvent
{
    OQMouseAction action = OQMouseAction::Move;
    int32_t x = 0; // device pixels of the client area; outside of it while the mouse is captured
    int32_t y = 0;
    int32_t button = OQMouseNone; // the one that changed
    int32_t wheel = 0; // 120 a notch, above 0 away from the user
    uint32_t modifiers = 0; // OQModifiers
};

struct OQKeyEvent
{
    bool pressed = false;
    bool repeated = false; // by being held down
    uint32_t key = 0; // X11 keysym
    uint32_t modifiers = 0; // OQModifiers
    OQString text; // what the key writes; may be empty
};

// The events of a window, on the window's thread. Each may delete the window's object.
class OQWndEvents
{
public:
    virtual ~OQWndEvents() = default;

    // The window was made; it isn't shown yet and was not told its size.
    virtual void OnInitialize() { }

    // The window is about to go, or has been taken away with its parent; once for each
    // OnInitialize.
    virtual void OnTerminate() { }

    // The client area's size, when it is first known and whenever it changes.
    virtual void OnSize(const OQSize& client) { (void)client; }

    // Draws all of the client area; there is no background under it.
    virtual void OnPaint(IOQPaint& paint) { (void)paint; }

    virtual void OnTimer(int32_t id) { (void)id; }

    virtual void OnMessage(uint32_t message, intptr_t p1, intptr_t p2)
    {
        (void)message;
        (void)p1;
        (void)p2;
    }

    // False: not handled, which lets a parent of the same toolkit have it.
    virtual bool OnMouse(const OQMouseEvent& event)
    {
        (void)event;
        return false;
    }

    virtual bool OnKey(const OQKeyEvent& event)
    {
        (void)event;
        return false;
    }

    virtual void OnFocus(bool hasFocus) { (void)hasFocus; }
};
