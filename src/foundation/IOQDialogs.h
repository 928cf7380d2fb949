#pragma once

#include "foundation/IOQWindowServices.h"

// Boxes and dialogs of the tools module. Without windows a box's text goes to standard error.
// The thread of the windows only; nothing is thrown. Slots: add at the end only.
class IOQDialogs
{
public:
    // Waits for the answer, an OQMessageBoxAnswer. `owner` is an X11 window id, or 0; `kind` is an
    // OQMessageBoxKind. Both texts as the user is to see them.
    virtual int32_t ShowMessageBox(
        uintptr_t owner, const OQChar* title, const OQChar* text, int32_t kind)
        = 0;

    // False, and an empty path, if the user chose none.
    virtual bool ChooseFile(uintptr_t owner, const OQFileDialogSetup& setup, IOQDllString& path)
        = 0;

protected:
    ~IOQDialogs() = default;
};
