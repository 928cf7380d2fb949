#pragma once

#include "foundation/OQArray.h"
#include "toolkit/OQWnd.h"

class IOQWndDeleteProbe;

enum OQWndKind : int32_t
{
    OQWndKindWindow = 1, // has a platform window that the toolkit makes
    OQWndKindWrapper = 5, // round a platform window that the toolkit didn't make
};

// What windows and controls have alike. The window's thread only.
class OQCoreWnd : public OQWnd
{
public:
    explicit OQCoreWnd(int32_t kind)
        : m_kind(kind)
    {
    }

    ~OQCoreWnd() override; // tells the probes

    int32_t GetKind() const { return m_kind; }

    // In device pixels of the parent; empty without a window.
    virtual OQRect GetRect() const = 0;
    OQSize GetSize() const;

    // The probe is not owned. It must be removed before it goes.
    void AddDeleteProbe(IOQWndDeleteProbe* probe);
    void RemoveDeleteProbe(IOQWndDeleteProbe* probe);

private:
    int32_t m_kind;
    OQArray<IOQWndDeleteProbe*, IOQWndDeleteProbe*> m_deleteProbes;
};
