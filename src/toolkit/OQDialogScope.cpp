#include "toolkit/OQDialogScope.h"

#include "toolkit/OQDisplayConnection.h"
#include "toolkit/OQToolkit.h"

#include <QDialog>
#include <QTimer>

#include <limits>

namespace {

// Window managers hand the focus to the top-level once they see the dialog go.
constexpr int FocusAgainMilliseconds[] = { 0, 50, 200 };
constexpr uint32_t LastSpecialFocus = 1; // none, or whatever the pointer is in

void GiveFocusBack(uint32_t window)
{
    if (!OQToolkit::Get().IsUsable())
        return;
    OQDisplayConnection& display = *OQToolkit::Get().GetDisplay();
    const uint32_t focus = display.GetInputFocus();
    // Where the user went on to something else, it stays there.
    if (focus != window && (focus <= LastSpecialFocus || focus == display.FindTopLevel(window)))
        display.SetInputFocus(window);
}

}

OQDialogScope::OQDialogScope(QDialog& dialog, uintptr_t owner)
    : m_dialog(dialog)
{
    dialog.setWindowModality(Qt::ApplicationModal);
    OQDisplayConnection& display = *OQToolkit::Get().GetDisplay();
    m_focus = display.GetInputFocus();
    OQSize size;
    if (owner == 0 || owner > std::numeric_limits<uint32_t>::max()
        || !display.GetParentSize(static_cast<uint32_t>(owner), size))
        return;
    const uint32_t top = display.FindTopLevel(static_cast<uint32_t>(owner));
    dialog.winId();
    if (const QWidget* const widget = QWidget::find(top)) {
        dialog.windowHandle()->setTransientParent(widget->window()->windowHandle());
    } else {
        m_foreignTop.reset(QWindow::fromWinId(top));
        dialog.windowHandle()->setTransientParent(m_foreignTop.get());
    }
}

OQDialogScope::~OQDialogScope()
{
    if (!OQToolkit::Get().IsUsable())
        return;
    m_dialog.windowHandle()->setTransientParent(nullptr);
    if (m_focus <= LastSpecialFocus)
        return;
    for (const int delay : FocusAgainMilliseconds)
        QTimer::singleShot(delay, [focus = m_focus] { GiveFocusBack(focus); });
}
