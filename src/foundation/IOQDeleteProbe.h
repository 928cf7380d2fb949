#pragma once

// Is told that the object which it watches goes. Slots: add at the end only.
class IOQDeleteProbe
{
public:
    // Called with the lock of all probes held: it must not call out.
    virtual void OnDeleted() = 0;

protected:
    ~IOQDeleteProbe() = default;
};
