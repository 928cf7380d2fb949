#pragma once

#include "toolkit/OQCompositeWnd.h"

#include <functional>

// Tells its owner of its events by calls that the owner registered.
class OQCallbackWnd : public OQCompositeWnd
{
public:
    using OQCompositeWnd::OQCompositeWnd;

    // Takes the place of what was registered for that event by that target. The target is not
    // owned; it removes its callbacks before it goes.
    template <class Target>
    void AddCallback(Target* target, int32_t event, void (Target::*operation)())
    {
        SetCallback(target, event, [target, operation] { (target->*operation)(); });
    }

    void RemoveCallbacks(const void* target);

protected:
    // Calls whoever registered for the event. False if this object was deleted by that: nothing
    // of it may be used any more.
    bool Call(int32_t event);

private:
    struct Callback
    {
        const void* target = nullptr;
        int32_t event = 0;
        std::function<void()> operation;
    };

    void SetCallback(const void* target, int32_t event, std::function<void()> operation);

    OQOwnedPtrArray<Callback> m_callbacks;
};
