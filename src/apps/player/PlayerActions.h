#pragma once

#include "apps/player/collection/Playlist.h"

#include <QAction>
#include <QList>
#include <QObject>

#include <array>

namespace pxvis::player {

// Everything that can be asked of the player by a key, a menu or a button: one action each, which
// all of them show. The keys work in every window of the player. Who carries the actions out
// connects to them.
class PlayerActions : public QObject
{
    Q_OBJECT

public:
    explicit PlayerActions(QObject* parent = nullptr);

    QAction* openFiles;
    QAction* openFolder;
    QAction* addFiles;
    QAction* savePlaylist;
    QAction* quit;

    QAction* play; // or pause
    QAction* stop;
    QAction* previousSong;
    QAction* nextSong;
    QAction* seekBack;
    QAction* seekForward;
    QAction* volumeUp;
    QAction* volumeDown;
    QAction* mute;
    QAction* shuffle;
    QAction* repeat; // the next of the three ways

    QAction* nextScript;
    QAction* previousScript;
    QAction* rotation;
    std::array<QAction*, 6> rate; // 0: no rating
    QAction* rateNever;

    QAction* fullScreen;
    QAction* leaveFullScreen;
    QAction* playlist;
    QAction* statusBar;
    QAction* levels;
    QAction* settings;
    QAction* listen; // to what the computer plays

    QAction* shortcuts;
    QAction* about;

    // How it stands with what has more than two ways.
    void ShowPlaying(bool isPlaying, bool isAtEnd);
    void ShowRepeat(RepeatMode mode);

    // In the order of the menus; each with the heading that it stands under.
    struct Entry
    {
        QString group;
        QAction* action;
    };

    const QList<Entry>& All() const { return m_all; }

private:
    QAction* Add(const QString& group, const QString& text, const QList<QKeySequence>& keys = {});

    void AddVisuals();
    void AddIcons();

    QList<Entry> m_all;
};

}
