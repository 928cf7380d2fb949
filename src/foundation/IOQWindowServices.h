#pragma once

#include "foundation/IOQDllString.h"

#include <cstdint>

class IOQMainThreadWaker;

enum OQMessageBoxKind : int32_t
{
    OQMessageBoxInformation = 0, // one button: OK
    OQMessageBoxWarning = 1,
    OQMessageBoxError = 2,
    OQMessageBoxQuestion = 3, // Yes and No
};

enum OQMessageBoxAnswer : int32_t
{
    OQMessageBoxClosed = 0, // also where there is no window to be had
    OQMessageBoxOk = 1,
    OQMessageBoxYes = 6,
    OQMessageBoxNo = 7,
};

struct OQFileDialogSetup
{
    bool save = false;
    const OQChar* title = nullptr; // null: the system's own
    const OQChar* filter = nullptr; // "Scripts|*.pxv|All files|*"; null: all files
    const OQChar* path = nullptr; // folder or file to begin with; null: the system's choice
    const OQChar* extension = nullptr; // added to a name without one, without "."; null: none
};

// What the tools module needs windows for, made by whoever has them, and given to the module as the
// parameter of its first operation, in an OQToolsSetup. The thread of the windows only. `owner` is
// an X11 window id, or 0. Slots: add at the end only.
class IOQWindowServices
{
public:
    // Waits for an answer while windows go on painting.
    virtual int32_t ShowMessageBox(
        uintptr_t owner, const OQChar* title, const OQChar* text, int32_t kind)
        = 0;

    // False, and an empty path, if the user chose none or there is no window to be had.
    virtual bool ChooseFile(uintptr_t owner, const OQFileDialogSetup& setup, IOQDllString& path)
        = 0;

    // Handles what is due on the calling thread's message queue and waits for nothing.
    virtual void PumpMessages() = 0;

protected:
    ~IOQWindowServices() = default;
};

// The parameter of the tools' first operation; null, or null in it, means no windows.
struct OQToolsSetup
{
    IOQWindowServices* windows = nullptr; // not owned; outlives the module
    IOQMainThreadWaker* mainThread = nullptr; // of the calling thread; likewise
};
