#pragma once

#include <QStatusBar>
#include <QTimer>

#include <array>

namespace pxvis::player {

class LevelMeter;
class Player;
class TextLabel;

// The line at the bottom: what there is to say, that nothing can be heard, and, on demand, the
// level and the beat that the pictures get.
class StatusLine : public QStatusBar
{
    Q_OBJECT

public:
    explicit StatusLine(Player& player, QWidget* parent = nullptr); // the player outlives it

    // What a notice is about.
    enum class Notice
    {
        Script,
        Sound
    };

    void Say(const QString& text); // for some seconds
    void SetNotice(Notice about, const QString& text); // until another, or none

    void SetLevelsShown(bool shown);
    void SetActive(bool active); // something is heard, and somebody sees it

private:
    void UpdateTimer();

    Player& m_player;
    TextLabel* m_notice;
    std::array<QString, 2> m_notices;
    LevelMeter* m_meter;
    QTimer m_timer;
    bool m_isActive = false;
};

}
