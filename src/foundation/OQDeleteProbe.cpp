#include "foundation/OQDeleteProbe.h"

#include <mutex>

namespace {

constinit std::mutex g_probesLock; // of all probes of the module and their hosts' arrays

}

OQDeleteProbeHost::~OQDeleteProbeHost()
{
    const std::lock_guard guard(g_probesLock);
    if (!m_probes)
        return;
    for (IOQDeleteProbe* probe : *m_probes)
        probe->OnDeleted();
}

void OQDeleteProbeHost::Add(IOQDeleteProbe& probe)
{
    const std::lock_guard guard(g_probesLock);
    if (!m_probes)
        m_probes = std::make_unique<OQPointerArray<IOQDeleteProbe>>();
    m_probes->Add(&probe);
}

void OQDeleteProbeHost::Remove(IOQDeleteProbe& probe)
{
    const std::lock_guard guard(g_probesLock);
    RemoveLocked(probe);
}

// From the end: the newest are on the top of a stack and go first.
void OQDeleteProbeHost::RemoveLocked(IOQDeleteProbe& probe)
{
    for (int i = m_probes ? m_probes->GetCount() : 0; i-- > 0;) {
        if ((*m_probes)[i] == &probe) {
            m_probes->Remove(i);
            return;
        }
    }
}

OQDeleteProbe::OQDeleteProbe(OQDeleteProbeHost* host)
    : m_host(host)
{
    if (m_host)
        m_host->Add(*this);
}

OQDeleteProbe::~OQDeleteProbe()
{
    const std::lock_guard guard(g_probesLock);
    if (m_host && !m_deleted)
        m_host->RemoveLocked(*this);
}
