#include "apps/player/ScriptShow.h"

#include "apps/player/PlayerSettings.h"
#include "apps/player/collection/SongLibrary.h"
#include "apps/player/display/DisplayArea.h"

#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>

namespace pxvis::player {

namespace {

constexpr char rotationSetting[] = "Rotation";
constexpr char intervalSetting[] = "Rotation Interval";
constexpr int usualInterval = 30; // s
constexpr int lookInterval = 1000; // ms
constexpr QLatin1Char separator('\\'); // of folder and name, in modes

}

ScriptShow::ScriptShow(DisplayArea& area, SongLibrary& library, PlayerSettings& settings)
    : m_area(area)
    , m_library(library)
    , m_settings(settings)
    , m_rotation([&library](const QString& script) { return library.ScriptRating(script); },
          QRandomGenerator::global()->generate())
{
    connect(&area, &DisplayArea::ModeChanged, this, &ScriptShow::OnModeChanged);
    connect(&area, &DisplayArea::ScriptFileShown, this, &ScriptShow::Shown);
    connect(&m_rotation, &ScriptRotation::Chosen, this, [this](const QString& script) {
        if (m_isStarting)
            return;
        m_isRotationsChoice = true;
        m_area.SetMode(script);
        m_isRotationsChoice = false;
    });
    m_look.setInterval(lookInterval);
    connect(&m_look, &QTimer::timeout, this, &ScriptShow::LookForFault);
    // Behind whoever writes the script's name over the picture, where a fault stands in its place.
    connect(this, &ScriptShow::Shown, this, &ScriptShow::LookForFault, Qt::QueuedConnection);
}

void ScriptShow::Start(const QString& file)
{
    QStringList scripts = m_area.Modes();
    scripts.removeIf([this](const QString& mode) { return m_area.IsCycle(mode); });
    m_rotation.SetInterval(Interval() * 1000);
    m_rotation.SetScripts(scripts);
    const bool isShown = !file.isEmpty() && m_area.ShowScriptFile(file);
    m_file = file;
    if (file.isEmpty()) {
        // A script that was shown the last time stays for its turn.
        const QString mode = m_area.CurrentMode();
        m_isStarting = scripts.contains(mode);
        if (m_isStarting)
            m_rotation.NoteShown(mode);
        m_rotation.SetOn(m_settings.Number(rotationSetting, 1) != 0);
        if (m_isStarting && IsRotating())
            m_rotation.Back();
        m_isStarting = false;
    }
    emit Changed();
    if (isShown || file.isEmpty())
        emit Shown();
    emit RotatingChanged();
    LookForFault();
    m_look.start();
}

void ScriptShow::Choose(const QString& mode)
{
    m_area.SetMode(mode);
}

void ScriptShow::Next()
{
    m_rotation.Next();
}

void ScriptShow::Back()
{
    m_rotation.Back();
}

QString ScriptShow::Name() const
{
    return m_file.isEmpty() ? m_area.CurrentMode().section(separator, -1)
                            : QFileInfo(m_file).completeBaseName();
}

QString ScriptShow::Folder() const
{
    return m_file.isEmpty() ? m_area.CurrentMode().section(separator, 0, -2) : QString();
}

bool ScriptShow::CanRate() const
{
    const QString mode = m_area.CurrentMode();
    return m_file.isEmpty() && !mode.isEmpty() && !m_area.IsCycle(mode);
}

int ScriptShow::Rating() const
{
    return CanRate() ? m_library.ScriptRating(m_area.CurrentMode()) : SongLibrary::noRating;
}

void ScriptShow::Rate(int rating)
{
    if (!CanRate())
        return;
    m_library.SetScriptRating(m_area.CurrentMode(), rating);
    emit Changed();
    if (rating == SongLibrary::never && IsRotating())
        Next();
}

void ScriptShow::SetRotating(bool on)
{
    m_settings.SetNumber(rotationSetting, on);
    if (on == IsRotating())
        return;
    m_rotation.SetOn(on);
    emit RotatingChanged();
}

int ScriptShow::Interval() const
{
    return std::clamp(
        m_settings.Number(intervalSetting, usualInterval), leastInterval, mostInterval);
}

void ScriptShow::SetInterval(int seconds)
{
    m_settings.SetNumber(intervalSetting, seconds);
    m_rotation.SetInterval(Interval() * 1000);
}

void ScriptShow::LookForFault()
{
    const QString fault = m_area.ScriptFault();
    if (fault == m_fault)
        return;
    m_fault = fault;
    emit FaultChanged();
}

void ScriptShow::OnModeChanged()
{
    m_file.clear();
    const QString mode = m_area.CurrentMode();
    if (!m_isRotationsChoice) {
        if (m_area.IsCycle(mode))
            SetRotating(false); // two that change the script would be one too many
        else
            m_rotation.NoteShown(mode);
    }
    emit Changed();
    emit Shown();
}

}
