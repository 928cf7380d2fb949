#include "apps/player/OutputChoice.h"

#include "apps/player/PlayerSettings.h"
#include "apps/player/sound/Listening.h"
#include "apps/player/sound/Playback.h"
#include "apps/player/sound/SoundDevices.h"

#include <algorithm>

namespace pxvis::player {

namespace {

constexpr char outputSetting[] = "Output";

// Without a sound server there is still one output, whatever it is called.
QString KeyOfDelay(const QString& device)
{
    return device.isEmpty() ? QStringLiteral("default") : device;
}

}

OutputChoice::OutputChoice(
    SoundDevices& devices, Playback& playback, Listening& listening, PlayerSettings& settings)
    : m_devices(devices)
    , m_playback(playback)
    , m_listening(listening)
    , m_settings(settings)
{
    connect(&devices, &SoundDevices::Changed, this, &OutputChoice::Apply);
    Apply();
}

QString OutputChoice::Chosen() const
{
    return m_settings.Text(outputSetting);
}

void OutputChoice::Choose(const QString& device)
{
    m_settings.SetText(outputSetting, device);
    Apply();
}

QString OutputChoice::InUse() const
{
    const QString chosen = Chosen();
    const QList<SoundDevice> outputs = m_devices.Outputs();
    const bool isThere = std::any_of(outputs.begin(), outputs.end(),
        [&chosen](const SoundDevice& device) { return device.id == chosen; });
    return isThere ? chosen : m_devices.DefaultOutput();
}

QString OutputChoice::NameInUse() const
{
    const QString id = InUse();
    for (const SoundDevice& device : m_devices.Outputs()) {
        if (device.id == id)
            return device.name;
    }
    return {};
}

int OutputChoice::Delay() const
{
    return std::clamp(m_settings.Delay(KeyOfDelay(InUse())), leastDelay, mostDelay);
}

void OutputChoice::SetDelay(int delay)
{
    m_settings.SetDelay(KeyOfDelay(InUse()), std::clamp(delay, leastDelay, mostDelay));
    Apply();
}

void OutputChoice::NoteListening(const QString& device)
{
    m_heard = device;
    Apply();
}

void OutputChoice::Apply()
{
    const QString inUse = InUse();
    // The system's own is left to the system, which may change it.
    const QString wanted = inUse == Chosen() ? inUse : QString();
    if (wanted != m_applied) {
        m_applied = wanted;
        m_playback.SetOutput(wanted);
    }
    m_playback.SetDelay(Delay());

    // What a monitor hears is on its way to the output; a microphone hears as people do.
    int heardDelay
        = m_heard.isEmpty() ? m_settings.Delay(KeyOfDelay(m_devices.DefaultOutput())) : 0;
    for (const SoundDevice& device : m_devices.Inputs()) {
        if (device.id == m_heard && device.isMonitor)
            heardDelay = Delay();
    }
    m_listening.SetDelay(std::max(heardDelay, 0));
    emit Changed();
}

}
