#pragma once

#include "apps/player/collection/PlayMeter.h"
#include "apps/player/sound/Playback.h"

#include <QObject>
#include <QString>
#include <QTimer>

namespace pxvis::player {

class Playlist;
class SongLibrary;

// Plays the songs of a list one after the other, without gaps: tells Playback what follows, goes
// past songs that can't be played, and counts those that were. User-interface thread.
class SongSequence : public QObject
{
    Q_OBJECT

public:
    // All outlive it.
    SongSequence(Playlist& playlist, Playback& playback, SongLibrary& library);

    // Rows of the list; others do nothing.
    void Play(int row);
    void Open(int row, PlayState state, qint64 position); // position: ms

    void Play(); // goes on, or starts with the current song; behind the last one with the first
    void Pause();
    void Stop();
    void Next();
    void Previous(); // the song's beginning, if it is not at its first seconds

    const host::SongInfo& Info() const { return m_info; } // of the current song, as far as known

    // The last song of the list has ended: Play begins with the first.
    bool IsAtEnd() const;
    // Songs that can't be played are passed over: nothing is heard, but something is to be.
    bool IsSkipping() const;

    void NoteProgress(); // to be called some times a second while it plays

signals:
    void SongStarted(); // the current song is another one, or begins anew
    void InfoChanged(); // also how often it was played
    void SkippingChanged();
    void ListEnded();
    void Message(const QString& text);

private:
    enum class Direction
    {
        Forward,
        Backward
    };

    void SetCurrent(int row, qint64 position);
    void UpdateNext();
    void Count();
    void CountEnd();
    void NoteFailure(int row, const QString& reason);
    void End();
    void Skip();
    void TellFailures();

    void OnSongChanged();
    void OnCurrentChanged();
    void OnInfo(const host::SongInfo& info);
    void OnEnded();
    void OnFailed(const QUrl& song, const QString& reason);

    Playlist& m_playlist;
    Playback& m_playback;
    SongLibrary& m_library;
    host::SongInfo m_info;
    int m_failures = 0; // running, without a song that could be played in between
    QString m_firstFailure; // of these, in a line
    QTimer m_skip;
    Direction m_direction = Direction::Forward; // to go on in, should a song fail
    bool m_isPlayWanted = false;
    bool m_isOpening = false; // SongChanged is to come for what was opened
    bool m_isMoving = false; // it is us who change the current row
    bool m_isAtEnd = false;
    PlayMeter m_meter;
};

}
