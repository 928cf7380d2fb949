#pragma once

#include <QObject>
#include <QString>

namespace pxvis::player {

class Listening;
class Playback;
class PlayerSettings;
class SoundDevices;

// The output that the songs go to, and how late its sound is: as the user chose, as long as that
// device is there, else what the system plays to. Each output keeps a delay of its own.
// User-interface thread.
class OutputChoice : public QObject
{
    Q_OBJECT

public:
    static constexpr int mostDelay = 5000; // ms
    static constexpr int leastDelay = -500; // half of what is decoded ahead

    // All outlive it.
    OutputChoice(
        SoundDevices& devices, Playback& playback, Listening& listening, PlayerSettings& settings);

    QString Chosen() const; // id; "": the system's
    void Choose(const QString& device);

    QString InUse() const; // id; "" if there is none
    QString NameInUse() const; // for people

    int Delay() const; // ms, of the one in use
    void SetDelay(int delay);

    void NoteListening(const QString& device); // that Listening hears from now on

signals:
    void Changed(); // the output in use, or its delay

private:
    void Apply();

    SoundDevices& m_devices;
    Playback& m_playback;
    Listening& m_listening;
    PlayerSettings& m_settings;
    QString m_applied; // that Playback has
    QString m_heard; // that Listening has
};

}
