#pragma once

#include "foundation/IOQDeleteProbe.h"
#include "foundation/OQArray.h"

#include <atomic>
#include <memory>

// What an object has that can be watched: its end is the object's end. Any thread.
class OQDeleteProbeHost
{
public:
    OQDeleteProbeHost() = default;
    ~OQDeleteProbeHost(); // tells all probes
    OQDeleteProbeHost(const OQDeleteProbeHost&) = delete;
    OQDeleteProbeHost& operator=(const OQDeleteProbeHost&) = delete;

    void Add(IOQDeleteProbe& probe); // stays until it is removed or told
    void Remove(IOQDeleteProbe& probe);

private:
    friend class OQDeleteProbe;
    void RemoveLocked(IOQDeleteProbe& probe);

    std::unique_ptr<OQPointerArray<IOQDeleteProbe>> m_probes; // from the first one on
};

// Whoever calls out to code that may delete an object makes one on the stack first, and touches
// nothing of the object afterwards if it says so.
class OQDeleteProbe final : public IOQDeleteProbe
{
public:
    explicit OQDeleteProbe(OQDeleteProbeHost* host); // null: never deleted
    ~OQDeleteProbe();
    OQDeleteProbe(const OQDeleteProbe&) = delete;
    OQDeleteProbe& operator=(const OQDeleteProbe&) = delete;

    bool IsDeleted() const { return m_deleted; }

    void OnDeleted() override { m_deleted = true; }

private:
    OQDeleteProbeHost* const m_host;
    std::atomic<bool> m_deleted = false;
};
