#pragma once

#include <QMenu>

namespace pxvis::player {

class DisplayArea;
class ScriptShow;

// The modes to choose from, those of a folder in a submenu; made when it is opened, since scripts
// come and go.
class ModesMenu : public QMenu
{
    Q_OBJECT

public:
    // Both outlive it.
    ModesMenu(DisplayArea& area, ScriptShow& show, QWidget* parent = nullptr);

private:
    void Fill();

    DisplayArea& m_area;
    ScriptShow& m_show;
};

}
