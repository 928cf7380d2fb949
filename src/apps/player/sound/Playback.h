#pragma once

#include "host/TrackTags.h"

#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>

namespace pxvis::player {

class HeardSound;

enum class PlayState
{
    Stopped,
    Playing,
    Paused
};

// Plays songs by GStreamer's playbin, one at a time and without a gap from one to the next. Works
// on threads of GStreamer's; all calls and signals are those of the user-interface thread, and no
// call waits for a file or a device.
class Playback : public QObject
{
    Q_OBJECT

public:
    // Sound goes to the device that is called so, "" to what the system chooses. `sink`: in tests,
    // another sink as gst-launch writes it; "" for the device.
    explicit Playback(const QString& sink = {});
    ~Playback() override;

    // Takes what plays away and starts with that song at `position`, in ms.
    void Open(const QUrl& song, qint64 position = 0, PlayState state = PlayState::Playing);

    // What follows without a gap when the song ends by itself; an empty one ends there. Holds for
    // the current song only, and may be changed until its last second or so.
    void SetNext(const QUrl& song);

    void Play();
    void Pause();
    void Stop();
    void Seek(qint64 position); // ms; kept inside the song

    PlayState State() const;
    QUrl Song() const; // the one that is heard
    qint64 Position() const; // ms
    qint64 Duration() const; // ms; -1: not known
    bool IsSeekable() const;

    double Volume() const; // 0 to 1, as loud as the ear takes it: the cube is the amplitude
    void SetVolume(double volume);
    bool IsMuted() const;
    void SetMuted(bool muted);

    // By SoundDevice::id. A song that plays goes on where it is.
    void SetOutput(const QString& device);

    // How much later than they believe it the listeners hear the sound, in ms; below 0 earlier. The
    // pictures follow.
    void SetDelay(int delay);

    HeardSound& Heard();

signals:
    void StateChanged();
    void SongChanged(); // another one is heard from now on, by Open or without a gap
    void InfoChanged(const pxvis::host::SongInfo& info); // tags and more of Song(), as they come
    void DurationChanged();
    void Seeked(qint64 position);
    void VolumeChanged(); // from outside as well
    void Ended(); // of the last song; the state is Stopped
    // The song can't be played, or not to its end: one line for the user. The state is Stopped.
    void Failed(const QUrl& song, const QString& reason);
    // There is no device to be heard by, or it went away: one line. The song goes on in silence. An
    // empty text: there is one again.
    void OutputLost(const QString& reason);

private:
    struct Pipeline;

    std::unique_ptr<Pipeline> m_pipeline;
};

}
