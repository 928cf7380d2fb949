#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <memory>

namespace pxvis::player {

struct SoundDevice
{
    QString id; // the sound server's name for it, which stays
    QString name; // for people
    bool isOutput
        = false; // else what can be listened to: a microphone, or the monitor of an output
    bool isMonitor = false;
    bool isDefault = false; // of the outputs: what the system plays to

    bool operator==(const SoundDevice&) const = default;
};

// The sound server's devices, kept up to date. User-interface thread. Without a sound server there
// are none.
class SoundDevices : public QObject
{
    Q_OBJECT

public:
    SoundDevices();
    ~SoundDevices() override;

    QList<SoundDevice> Outputs() const;
    QList<SoundDevice> Inputs() const; // monitors first
    QString DefaultOutput() const; // its id; "" without any

signals:
    void Changed(); // devices, or which is the default

private:
    struct Watch;

    std::unique_ptr<Watch> m_watch;
};

}
