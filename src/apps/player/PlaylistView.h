#pragma once

#include <QTimer>
#include <QWidget>

class QTableView;

namespace pxvis::player {

class Player;
class PlayerActions;
class TextLabel;

// The playlist as a table, with what can be done to it. Songs can be dropped into it and moved.
class PlaylistView : public QWidget
{
    Q_OBJECT

public:
    // Both outlive it.
    PlaylistView(Player& player, PlayerActions& actions, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override; // its table scrolls

private:
    void AskWhatToDo(const QPoint& point);
    void RemoveSelected();
    void Clear();
    void UpdateSum();
    void UpdateColumns();
    QList<int> SelectedRows() const;

    void resizeEvent(QResizeEvent* event) override;

    Player& m_player;
    QTableView* m_table;
    TextLabel* m_sum;
    QTimer m_sumTimer; // long lists change in many places at once
};

}
