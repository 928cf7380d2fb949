#pragma once

#include <QWidget>

class QLabel;
class QTableView;

namespace pxvis::player {

class Player;
class PlayerActions;

// The playlist as a table, with what can be done to it. Songs can be dropped into it and moved.
class PlaylistView : public QWidget
{
    Q_OBJECT

public:
    // Both outlive it.
    PlaylistView(Player& player, PlayerActions& actions, QWidget* parent = nullptr);

    QSize sizeHint() const override;

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
    QLabel* m_sum;
};

}
