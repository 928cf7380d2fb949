#pragma once

#include "foundation/IOQDialogs.h"

#include <atomic>

// Shows what the windows that the module was given can show.
class CDialogs final : public IOQDialogs
{
public:
    explicit CDialogs(const std::atomic<IOQWindowServices*>& windows)
        : m_windows(windows)
    {
    }

    int32_t ShowMessageBox(
        uintptr_t owner, const OQChar* title, const OQChar* text, int32_t kind) override;
    bool ChooseFile(uintptr_t owner, const OQFileDialogSetup& setup, IOQDllString& path) override;

private:
    const std::atomic<IOQWindowServices*>& m_windows; // null: none
};
