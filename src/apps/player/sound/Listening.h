#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace pxvis::player {

class HeardSound;

// Hears what the computer plays, or a microphone, for the pictures; it is played nowhere. Its
// stream is called "pxvis" at the sound server. User-interface thread; no call waits for a device.
class Listening : public QObject
{
    Q_OBJECT

public:
    // `source`: in tests, another source as gst-launch writes it; "" for the sound server.
    explicit Listening(const QString& source = {});
    ~Listening() override;

    // SoundDevice::id; "": the monitor of the output that the system plays to, whichever that is at
    // the time. A device that goes away is waited for.
    void Start(const QString& device = {});
    void Stop();
    bool IsOn() const;

    void SetDelay(int delay); // ms, as of Playback; below 0 has no effect

    HeardSound& Heard();

signals:
    void Failed(const QString& reason); // one line; it keeps trying until Stop
    void Started(const QString& device); // what it hears from now on, for people

private:
    struct Pipeline;

    std::unique_ptr<Pipeline> m_pipeline;
};

}
