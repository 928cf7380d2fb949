#pragma once

#include "foundation/IOQUserInterface.h"

#include <atomic>

class IOQWindowServices;

// Pumps by the windows that the module was given; without any there is nothing to pump.
class CUserInterface final : public IOQUserInterface
{
public:
    explicit CUserInterface(const std::atomic<IOQWindowServices*>& windows)
        : m_windows(windows)
    {
    }

    void PumpMessages() override;
    void GetUserName(IOQDllString& name) const override;

private:
    const std::atomic<IOQWindowServices*>& m_windows; // null: none
};
