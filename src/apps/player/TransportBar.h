#pragma once

#include <QWidget>

class QAction;
class QBoxLayout;
class QLabel;
class QToolButton;

namespace pxvis::player {

class JumpSlider;
class Player;
class PlayerActions;
class RatingStars;
class ScriptShow;
class TextLabel;

// "1:02:03" or "2:03"; "–:––" below 0.
QString TimeText(qint64 milliseconds);

// The controls below the picture: the place in the song, what plays, which script is shown and its
// rating, the volume.
class TransportBar : public QWidget
{
    Q_OBJECT

public:
    // All outlive it.
    TransportBar(
        Player& player, ScriptShow& show, PlayerActions& actions, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QBoxLayout* MakePlace();
    QBoxLayout* MakeSong();
    QBoxLayout* MakeButtons();
    QBoxLayout* MakeScript();
    QBoxLayout* MakeVolume();
    QToolButton* MakeButton(QAction* action, int side = 20);

    void UpdatePlace();
    void UpdateSong();
    void UpdateVolume();
    void UpdateScript();

    Player& m_player;
    ScriptShow& m_show;
    PlayerActions& m_actions;
    JumpSlider* m_place;
    QLabel* m_elapsed;
    QLabel* m_length;
    TextLabel* m_title;
    TextLabel* m_artist;
    TextLabel* m_script;
    TextLabel* m_folder;
    RatingStars* m_rating;
    JumpSlider* m_volume;
};

}
