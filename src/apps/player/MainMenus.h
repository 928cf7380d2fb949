#pragma once

class QMenu;
class QMenuBar;

namespace pxvis::player {

class DisplayArea;
class Player;
class PlayerActions;
class ScriptShow;

// What the menus of the main window hold. All outlive the menus.
struct MainMenus
{
    Player& player;
    PlayerActions& actions;
    ScriptShow& show;
    DisplayArea& area;

    void AddTo(QMenuBar& bar) const;
    void AddContext(QMenu& menu) const; // for the picture

private:
    void AddFile(QMenu& menu) const;
    void AddPlayback(QMenu& menu) const;
    void AddVisuals(QMenu& menu) const;
    void AddOwnOfVisualization(QMenu& menu) const;
    void FillRecent(QMenu& menu) const;
};

}
