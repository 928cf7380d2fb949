#include "apps/player/display/ScriptRotation.h"

#include <QSet>
#include <QTimer>

#include <algorithm>
#include <random>
#include <utility>
#include <vector>

namespace pxvis::player {

namespace {

constexpr int shortestInterval = 1000; // ms

// How often a script comes, against others.
uint32_t WeightOf(int rating)
{
    constexpr int unrated = 3;
    if (rating < 0)
        return 0;
    return 1U << (std::clamp(rating == 0 ? unrated : rating, 1, 5) - 1);
}

// Below `limit`, each as likely; the same on all systems, as the library's distributions aren't.
uint32_t Below(uint32_t limit, std::mt19937& random)
{
    const uint32_t tooMany = UINT32_MAX - UINT32_MAX % limit;
    uint32_t number = 0;
    do
        number = static_cast<uint32_t>(random());
    while (number >= tooMany);
    return number % limit;
}

}

struct ScriptRotation::History
{
    History(Rating rating, uint32_t seed)
        : rating(std::move(rating))
        , random(seed)
    {
    }

    Rating rating;
    std::mt19937 random;
    QStringList scripts;
    QSet<QString> known; // the same
    QStringList shown; // the oldest first
    qsizetype place = -1; // in `shown`, of the current one
    bool isOn = false;
    bool isHeld = false;
    int interval = 20'000; // ms
    int left = 0; // ms of the interval, while time stands still
    QTimer timer;

    QString Current() const { return shown.value(place); }
};

ScriptRotation::ScriptRotation(Rating rating, uint32_t seed)
    : m_history(std::make_unique<History>(std::move(rating), seed))
{
    m_history->timer.setSingleShot(true);
    connect(&m_history->timer, &QTimer::timeout, this, [this] {
        StartTime(); // also if there is nothing to choose, now
        Next();
    });
}

ScriptRotation::~ScriptRotation() = default;

void ScriptRotation::SetScripts(const QStringList& scripts)
{
    m_history->scripts = scripts;
    m_history->scripts.removeDuplicates();
    m_history->known = QSet<QString>(scripts.begin(), scripts.end());
    if (m_history->isOn && m_history->place < 0)
        Next();
}

void ScriptRotation::SetOn(bool on)
{
    if (on == m_history->isOn)
        return;
    m_history->isOn = on;
    m_history->timer.stop();
    if (!on)
        return;
    StartTime();
    Next();
}

bool ScriptRotation::IsOn() const
{
    return m_history->isOn;
}

void ScriptRotation::SetInterval(int milliseconds)
{
    History& history = *m_history;
    const int interval = std::max(milliseconds, shortestInterval);
    const int change = interval - std::exchange(history.interval, interval);
    if (history.timer.isActive())
        history.timer.start(std::max(0, history.timer.remainingTime() + change));
    else
        history.left = std::max(0, history.left + change);
}

void ScriptRotation::SetHeld(bool held)
{
    History& history = *m_history;
    if (held == history.isHeld)
        return;
    history.isHeld = held;
    if (!history.isOn)
        return;
    if (!held) {
        history.timer.start(history.left);
    } else {
        history.left = std::max(0, history.timer.remainingTime());
        history.timer.stop();
    }
}

void ScriptRotation::Next()
{
    const qsizetype forward = FindShown(m_history->place, 1);
    if (forward >= 0) {
        GoTo(forward);
        return;
    }
    const QString script = Pick();
    if (script.isEmpty())
        return;
    Add(script);
    emit Chosen(script);
}

void ScriptRotation::Back()
{
    const qsizetype back = FindShown(m_history->place, -1);
    if (back >= 0)
        GoTo(back);
}

bool ScriptRotation::CanGoBack() const
{
    return FindShown(m_history->place, -1) >= 0;
}

void ScriptRotation::NoteShown(const QString& script)
{
    if (script != m_history->Current())
        Add(script);
    else
        StartTime();
}

// The nearest place behind or before that one whose script can still be shown; -1 without any.
qsizetype ScriptRotation::FindShown(qsizetype from, int step) const
{
    const History& history = *m_history;
    for (qsizetype place = from + step; place >= 0 && place < history.shown.size(); place += step) {
        const QString& script = history.shown[place];
        if (history.known.contains(script) && WeightOf(history.rating(script)) > 0
            && script != history.Current())
            return place;
    }
    return -1;
}

void ScriptRotation::GoTo(qsizetype place)
{
    m_history->place = place;
    StartTime();
    const QString script = m_history->Current();
    emit Chosen(script);
}

void ScriptRotation::Add(const QString& script)
{
    History& history = *m_history;
    history.shown.resize(history.place + 1); // what lay in front is gone, as in a browser
    history.shown.append(script);
    if (history.shown.size() > mostHistory)
        history.shown.removeFirst();
    history.place = history.shown.size() - 1;
    StartTime();
}

// Empty if there is none but the current one.
QString ScriptRotation::Pick()
{
    History& history = *m_history;
    std::vector<std::pair<QString, uint32_t>> choice;
    for (const QString& script : std::as_const(history.scripts)) {
        if (const uint32_t weight = WeightOf(history.rating(script)); weight > 0)
            choice.emplace_back(script, weight);
    }
    const auto leaveOut = [&](const QString& script) {
        return static_cast<qsizetype>(
            std::erase_if(choice, [&](const auto& one) { return one.first == script; }));
    };
    qsizetype resting = static_cast<qsizetype>(choice.size()) / 3;
    resting -= leaveOut(history.Current());
    for (qsizetype place = history.shown.size() - 1; place >= 0 && resting > 0; --place)
        resting -= leaveOut(history.shown[place]);
    uint32_t sum = 0;
    for (const auto& [script, weight] : choice)
        sum += weight;
    if (sum == 0)
        return {};
    uint32_t at = Below(sum, history.random);
    for (const auto& [script, weight] : choice) {
        if (at < weight)
            return script;
        at -= weight;
    }
    return {};
}

void ScriptRotation::StartTime()
{
    History& history = *m_history;
    history.left = history.interval;
    if (history.isOn && !history.isHeld)
        history.timer.start(history.interval);
}

}
