#include "toolkit/OQMenuWnd.h"

#include "toolkit/OQBasicWnd.h"
#include "toolkit/OQMenuManager.h"
#include "toolkit/OQWindowWidget.h"
#include "toolkit/QtText.h"

#include <QAction>
#include <QMenu>

namespace {

// "&" before a character would make that the entry's key.
QString LabelOf(const OQString& text)
{
    return OQToQt(text).replace(u'&', QLatin1String("&&"));
}

void Fill(QMenu& menu, const OQMenuManager& manager)
{
    for (int i = 0; i < manager.GetCount(); ++i) {
        const OQMenuManager::Entry& entry = manager.GetEntry(i);
        if (entry.isSeparator) {
            menu.addSeparator();
            continue;
        }
        if (entry.submenu) {
            Fill(*menu.addMenu(LabelOf(entry.text)), *entry.submenu);
            continue;
        }
        QAction* const action = menu.addAction(LabelOf(entry.text));
        action->setData(QVariant::fromValue(static_cast<const void*>(&entry)));
        action->setEnabled((entry.flags & VisMenuDisabled) == 0);
        action->setCheckable((entry.flags & VisMenuChecked) != 0);
        action->setChecked((entry.flags & VisMenuChecked) != 0);
    }
}

}

bool OQMenuWnd::Show(const OQMenuManager& menu, OQBasicWnd& owner, int32_t x, int32_t y)
{
    m_chosenId = 0;
    m_chosenText.Clear();
    const OQWindowWidget* const widget = owner.GetWidget();
    if (!widget)
        return false;
    QMenu popup;
    Fill(popup, menu);
    const QPointF position = QPointF(x, y) / widget->devicePixelRatioF();
    const QAction* const chosen = popup.exec(widget->mapToGlobal(position).toPoint());
    if (!chosen)
        return false;
    const auto* const entry
        = static_cast<const OQMenuManager::Entry*>(chosen->data().value<const void*>());
    m_chosenId = entry->id;
    m_chosenText = entry->text;
    return true;
}
