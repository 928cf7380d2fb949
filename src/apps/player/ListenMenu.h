#pragma once

#include <QMenu>

namespace pxvis::player {

class Player;
class PlayerActions;

// What is listened to, and where the songs go; made when it is opened, from the devices of then.
class ListenMenu : public QMenu
{
    Q_OBJECT

public:
    // Both outlive it.
    ListenMenu(Player& player, PlayerActions& actions, QWidget* parent = nullptr);

private:
    void Fill();
    void AddHeading(const QString& text);
    QAction* Add(const QString& text, bool isChosen, QActionGroup& group);

    Player& m_player;
    PlayerActions& m_actions;
};

}
