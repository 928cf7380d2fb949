#pragma once

#include "apps/player/OutputChoice.h"
#include "apps/player/PlayerSettings.h"
#include "apps/player/SongSequence.h"
#include "apps/player/collection/Playlist.h"
#include "apps/player/collection/SongFinder.h"
#include "apps/player/collection/SongLibrary.h"
#include "apps/player/desktop/PlayerControls.h"
#include "apps/player/desktop/SleepInhibitor.h"
#include "apps/player/display/VisualHost.h"
#include "apps/player/sound/Listening.h"
#include "apps/player/sound/SoundDevices.h"

#include <QDateTime>
#include <QHash>
#include <QTimer>

namespace pxvis::player {

class Session;

// The player without its windows: the songs and who plays them, what is listened to instead, and
// what of it the visualizations see. Playing and listening exclude each other. User-interface
// thread.
class Player final : public PlayerControls
{
    Q_OBJECT

public:
    // `sink` of Playback and `source` of Listening, for tests.
    explicit Player(const QString& sink = {}, const QString& source = {});
    ~Player() override; // remembers

    Playlist& Songs() { return m_playlist; }

    SongLibrary& Library() { return m_library; }

    PlayerSettings& Settings() { return m_settings; }

    VisualHost& Host() { return m_host; }

    SoundDevices& Devices() { return m_devices; }

    OutputChoice& Output() { return m_output; }

    // Brings back what was remembered: the song is paused where it was.
    void Restore();

    // of PlayerControls
    PlayerStatus Status() const override;
    qint64 Position() const override;
    void Raise() override;
    void Quit() override;
    void Play() override;
    void Pause() override;
    void Stop() override;
    void Next() override;
    void Previous() override; // the song's beginning, if it is not at its first seconds
    void SeekTo(qint64 position) override;
    void OpenUrl(const QUrl& url) override;
    void SetVolume(double volume) override;
    void SetShuffled(bool shuffled) override;
    void SetLoop(PlayerStatus::Loop loop) override;
    void SetFullScreen(bool fullScreen) override;

    // Plays what is found there, in its own order. What the list has already isn't added again.
    void Open(const QList<QUrl>& urls);
    void Add(const QList<QUrl>& urls, int row = -1);
    void PlayRow(int row);
    void RateSong(const QUrl& song, int rating);
    void TogglePlay();
    void SeekBy(qint64 milliseconds);
    void SetMuted(bool muted);
    bool IsMuted() const;

    // Hears that device in place of the songs; "": what the computer plays.
    void Listen(const QString& device);
    void SetListeningDevice(const QString& device); // from now on, or the next time
    void StopListening();
    bool IsListening() const;
    bool IsSkipping() const; // songs that can't be played, though Status says stopped
    bool IsAtEnd() const; // of the list, where Play begins with the first song
    QString ListeningDevice() const; // that is heard, or was the last time
    QString ListeningName() const; // of what is heard, for people

    // Whether anyone sees the pictures, so that the screen is to stay on, and whether they fill it.
    void SetSeen(bool seen);
    void NoteFullScreen(bool fullScreen);

    void Remember(); // what isn't on the disk yet

signals:
    void SongStarted(); // another song, or another source, is heard
    void TrackChanged(); // what is known of it
    void PositionChanged();
    void ListeningChanged();
    void Message(const QString& text);
    void OutputLost(const QString& reason); // as Playback's; stays until an empty one
    void RaiseAsked();
    void QuitAsked();
    void FullScreenAsked(bool fullScreen);

private:
    // What is to be done with what the finder finds.
    struct Finding
    {
        bool plays = false;
        int row = -1; // to be put before; -1: behind the last
    };

    void Connect();
    void UpdateSource(); // who is heard by the pictures, and what keeps the screen awake
    void TellTrack();
    void Insert(QList<Song> songs, int row);
    void PlayFound(const QList<Song>& songs);
    void OnFound(int number, const QList<Song>& songs, const QStringList& faults);
    void OnTick();

    PlayerSettings m_settings;
    SongLibrary m_library;
    SongFinder m_finder;
    Playlist m_playlist;
    SoundDevices m_devices;
    Playback m_playback;
    Listening m_listening;
    OutputChoice m_output;
    SongSequence m_sequence;
    VisualHost m_host;
    SleepInhibitor m_inhibitor;
    std::unique_ptr<Session> m_session;
    QTimer m_tick; // while something plays
    QTimer m_keep;

    QHash<int, Finding> m_findings; // by the finder's numbers
    QDateTime m_lastPlayed; // the current song, before it was begun
    QString m_listeningName;
    bool m_isSeen = true;
    bool m_isFullScreen = false;
};

}
