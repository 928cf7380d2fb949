#include "toolkit/OQCoreWnd.h"

#include "toolkit/IOQWndDeleteProbe.h"

OQCoreWnd::~OQCoreWnd()
{
    // A probe may remove others while it is told.
    while (m_deleteProbes.GetCount() > 0) {
        IOQWndDeleteProbe* const probe = m_deleteProbes.Last();
        m_deleteProbes.Remove(m_deleteProbes.GetCount() - 1);
        probe->OnWndDeleted(this);
    }
}

OQSize OQCoreWnd::GetSize() const
{
    const OQRect rect = GetRect();
    return { rect.Width(), rect.Height() };
}

void OQCoreWnd::AddDeleteProbe(IOQWndDeleteProbe* probe)
{
    m_deleteProbes.Add(probe);
}

void OQCoreWnd::RemoveDeleteProbe(IOQWndDeleteProbe* probe)
{
    for (int i = m_deleteProbes.GetCount() - 1; i >= 0; --i) {
        if (m_deleteProbes[i] == probe)
            m_deleteProbes.Remove(i);
    }
}
