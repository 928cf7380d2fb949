#pragma once

#include <pxvis/IOQMenu.h>

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class QMenu;

namespace pxvis::player {

// A menu of Qt's that a visualization fills during BuildMenu; what it added stays in the QMenu.
class VisualMenu final : public IOQMenu
{
public:
    // An entry was chosen: its number and text as they were given.
    using Choose = std::function<void(int32_t id, const QString& text)>;

    VisualMenu(QMenu& menu, Choose choose);
    ~VisualMenu();

    void AddItem(int32_t id, const char16_t* text, uint32_t flags) override;
    void AddSeparator() override;
    IOQMenu* AddSubmenu(const char16_t* text) override;

private:
    QMenu& m_menu;
    Choose m_choose;
    std::vector<std::unique_ptr<VisualMenu>> m_submenus;
};

}
