#pragma once

#include <QWindow>

#include <cstdint>
#include <memory>

class QDialog;

// Puts a dialog before a window that may belong to another program or toolkit: modal, transient for
// the top-level window that it lies in, and with the keyboard back where it was behind it. Lives
// for as long as the dialog is shown. Internal.
class OQDialogScope
{
public:
    OQDialogScope(QDialog& dialog, uintptr_t owner); // owner: X11 window id, or 0
    ~OQDialogScope();
    OQDialogScope(const OQDialogScope&) = delete;
    OQDialogScope& operator=(const OQDialogScope&) = delete;

private:
    QDialog& m_dialog;
    std::unique_ptr<QWindow> m_foreignTop;
    uint32_t m_focus = 0; // where the keyboard was
};
