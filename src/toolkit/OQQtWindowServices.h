#pragma once

#include "foundation/IOQWindowServices.h"

// Dialogs of Qt's for the tools module. The thread of the windows only; a process without Qt gets
// its application with the first dialog.
class OQQtWindowServices final : public IOQWindowServices
{
public:
    int32_t ShowMessageBox(
        uintptr_t owner, const OQChar* title, const OQChar* text, int32_t kind) override;
    bool ChooseFile(uintptr_t owner, const OQFileDialogSetup& setup, IOQDllString& path) override;
    void PumpMessages() override;
};
