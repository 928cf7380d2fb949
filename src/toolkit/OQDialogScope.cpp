#include "toolkit/OQDialogScope.h"

#include "toolkit/OQDisplayConnection.h"
#include "toolkit/OQInputFocus.h"
#include "toolkit/OQToolkit.h"

#include <QDialog>
#include <QWidget>

#include <limits>

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
    if (QWindow* const window = m_dialog.windowHandle())
        window->setTransientParent(nullptr);
    OQGiveInputFocus(m_focus);
}
