#pragma once

#include <QObject>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>

namespace pxvis::player {

// Chooses one script after another by their ratings: each star doubles how often one comes, one
// without a rating counts as 3, and "never" never comes. Not the same twice running, and none again
// that is among the last third of those that can come. Has a history to go back and forward in.
// User-interface thread.
class ScriptRotation : public QObject
{
    Q_OBJECT

public:
    static constexpr int mostHistory = 500; // scripts that can be gone back to

    // `rating`: of a script, 1 to 5, 0 for none, SongLibrary::never, which is below 0.
    using Rating = std::function<int(const QString& script)>;

    explicit ScriptRotation(Rating rating, uint32_t seed);
    ~ScriptRotation() override;

    void SetScripts(const QStringList& scripts); // single scripts, no cycles

    void SetOn(bool on); // chooses one at once, then one each interval
    bool IsOn() const;
    void SetInterval(int milliseconds); // 1000 at least
    void SetHeld(bool held); // time stands still, as in pause; on and interval stay

    void Next(); // a new one, or the one that Back came from; nothing if none can come
    void Back();
    bool CanGoBack() const;
    void NoteShown(
        const QString& script); // the user chose it: goes into the history, time starts anew

signals:
    void Chosen(const QString& script);

private:
    struct History;

    QString Pick();
    qsizetype FindShown(qsizetype from, int step) const;
    void Add(const QString& script);
    void GoTo(qsizetype place);
    void StartTime();

    std::unique_ptr<History> m_history;
};

}
