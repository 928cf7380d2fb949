#include "apps/player/display/VisualMenu.h"

#include <QAction>
#include <QMenu>

#include <utility>

namespace pxvis::player {

namespace {

const QString submenuName = "visualization";

QString EntryText(const char16_t* text)
{
    return text ? QString::fromUtf16(text) : QString();
}

// The sign of keyboard access in menus of Qt's is a letter in those texts.
QString ShownText(QString text)
{
    return text.replace('&', "&&");
}

}

VisualMenu::VisualMenu(QMenu& menu, Choose choose)
    : m_menu(menu)
    , m_choose(std::move(choose))
{
    // A menu that was cleared shows its submenus no more, but keeps them.
    const auto submenus = menu.findChildren<QMenu*>(submenuName, Qt::FindDirectChildrenOnly);
    for (QMenu* const submenu : submenus) {
        if (!menu.actions().contains(submenu->menuAction()))
            delete submenu;
    }
}

VisualMenu::~VisualMenu() = default;

void VisualMenu::AddItem(int32_t id, const char16_t* text, uint32_t flags)
{
    const QString entry = EntryText(text);
    QAction* const action = m_menu.addAction(ShownText(entry));
    action->setEnabled(!(flags & VisMenuDisabled));
    action->setCheckable(flags & VisMenuChecked);
    action->setChecked(flags & VisMenuChecked);
    QObject::connect(action, &QAction::triggered, &m_menu,
        [choose = m_choose, id, entry] { choose(id, entry); });
}

void VisualMenu::AddSeparator()
{
    m_menu.addSeparator();
}

IOQMenu* VisualMenu::AddSubmenu(const char16_t* text)
{
    QMenu* const submenu = m_menu.addMenu(ShownText(EntryText(text)));
    submenu->setObjectName(submenuName);
    m_submenus.push_back(std::make_unique<VisualMenu>(*submenu, m_choose));
    return m_submenus.back().get();
}

}
