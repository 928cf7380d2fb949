#include "siblings/tools/CDialogs.h"

#include "foundation/OQString.h"
#include "os/StandardError.h"
#include "siblings/tools/HarmlessText.h"

namespace {

OQString OnOneLine(const OQChar* text)
{
    OQString line = text;
    line.Replace(u"\r\n", u" ");
    line.Replace(u'\n', u' ');
    return line;
}

}

int32_t CDialogs::ShowMessageBox(
    uintptr_t owner, const OQChar* title, const OQChar* text, int32_t kind)
{
    try {
        if (IOQWindowServices* windows = m_windows)
            return windows->ShowMessageBox(owner, title, text, kind);
        const OQString line = OnOneLine(title) + u": " + OnOneLine(text);
        pxvis::os::WriteStandardError(pxvis::tools::HarmlessText(line) + "\n");
    } catch (...) {
        // Without memory there is no box either.
    }
    return OQMessageBoxClosed;
}

bool CDialogs::ChooseFile(uintptr_t owner, const OQFileDialogSetup& setup, IOQDllString& path)
{
    path.Clear();
    IOQWindowServices* windows = m_windows;
    return windows && windows->ChooseFile(owner, setup, path);
}
