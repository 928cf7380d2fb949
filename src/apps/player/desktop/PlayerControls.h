#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

namespace pxvis::player {

// What the desktop shows of a player.
struct PlayerStatus
{
    enum class State
    {
        Stopped,
        Playing,
        Paused
    };

    enum class Loop
    {
        None,
        Track,
        Playlist
    };

    State state = State::Stopped;
    Loop loop = Loop::None;
    bool isShuffled = false;
    double volume = 1; // 0 to 1
    bool canGoNext = false;
    bool canGoPrevious = false; // to another track
    bool canPlay = false;
    bool canSeek = false;
    bool isFullScreen = false;

    qint64 trackNumber = -1; // the track's own, wherever in the list it moves; -1: there is none
    QUrl url;
    QString title;
    QString artist;
    QString album;
    QString coverFile; // path; may be empty
    qint64 length = -1; // us; -1: not known

    bool operator==(const PlayerStatus&) const = default;
};

// A player as it is steered from outside. User-interface thread.
class PlayerControls : public QObject
{
    Q_OBJECT

public:
    virtual PlayerStatus Status() const = 0;
    virtual qint64 Position() const = 0; // us

    virtual void Raise() = 0;
    virtual void Quit() = 0;
    virtual void Play() = 0;
    virtual void Pause() = 0;
    virtual void Stop() = 0;
    virtual void Next() = 0;
    virtual void Previous() = 0;
    virtual void SeekTo(qint64 position) = 0; // us
    virtual void OpenUrl(const QUrl& url) = 0;
    virtual void SetVolume(double volume) = 0;
    virtual void SetShuffled(bool shuffled) = 0;
    virtual void SetLoop(PlayerStatus::Loop loop) = 0;
    virtual void SetFullScreen(bool fullScreen) = 0;

signals:
    void StatusChanged();
    void Seeked(qint64 position); // us
};

}
