#pragma once

#include <QObject>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>

namespace pxvis::player {

// Chooses one script after another by their ratings: one rated 5 comes more often than one rated 1,
// one without a rating counts as 3, and "never" never comes. Not the same twice running, and none
// again before a good part of the others had its turn. Has a history to go back and forward in.
// User-interface thread.
class ScriptRotation : public QObject
{
    Q_OBJECT

public:
    // `rating`: of a script, 1 to 5, 0 for none, SongLibrary::never.
    using Rating = std::function<int(const QString& script)>;

    explicit ScriptRotation(Rating rating, uint32_t seed);
    ~ScriptRotation() override;

    void SetScripts(const QStringList& scripts); // single scripts, no cycles

    void SetOn(bool on); // chooses one at once, then one each interval
    bool IsOn() const;
    void SetInterval(int milliseconds); // 1000 at least
    void SetHeld(bool held); // time stands still, as in pause; on and interval stay

    void Next(); // a new one, or the one that Back came from
    void Back();
    bool CanGoBack() const;
    void NoteShown(
        const QString& script); // the user chose it: goes into the history, time starts anew

signals:
    void Chosen(const QString& script);

private:
    struct History;

    std::unique_ptr<History> m_history;
};

}
