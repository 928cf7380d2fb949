#include "siblings/tools/CUserInterface.h"

#include "foundation/IOQDllString.h"
#include "foundation/IOQWindowServices.h"
#include "foundation/OQString.h"
#include "os/UserFolders.h"

void CUserInterface::PumpMessages()
{
    if (IOQWindowServices* windows = m_windows)
        windows->PumpMessages();
}

void CUserInterface::GetUserName(IOQDllString& name) const
{
    try {
        const OQString text = OQString::FromUtf8(pxvis::os::UserName());
        name.SetText(text.GetText(), text.GetLength());
    } catch (...) {
        name.Clear();
    }
}
