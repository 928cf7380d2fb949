#include "apps/player/display/ScriptRotation.h"

#include <doctest/doctest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <functional>
#include <map>

using namespace pxvis::player;

namespace {

struct Application // which timers need
{
    int argc = 1;
    char name[9] = "rotation";
    char* argv[2] = { name, nullptr };
    QCoreApplication application { argc, argv };
};

struct Rotated
{
    explicit Rotated(int count, uint32_t seed = 1)
        : rotation([this](const QString& script) { return ratings[script]; }, seed)
    {
        for (int i = 0; i < count; ++i)
            scripts.append(QString::number(i));
        rotation.SetScripts(scripts);
        QObject::connect(&rotation, &ScriptRotation::Chosen,
            [this](const QString& script) { chosen.append(script); });
    }

    QString Next()
    {
        rotation.Next();
        return chosen.value(chosen.size() - 1);
    }

    QString Back()
    {
        rotation.Back();
        return chosen.value(chosen.size() - 1);
    }

    std::map<QString, int> ratings;
    QStringList scripts;
    QStringList chosen;
    ScriptRotation rotation;
};

bool RunUntil(const std::function<bool()>& isSo, int milliseconds = 30'000)
{
    QElapsedTimer time;
    for (time.start(); !isSo(); QThread::msleep(5)) {
        if (time.elapsed() > milliseconds)
            return false;
        QCoreApplication::processEvents();
    }
    return true;
}

void Run(int milliseconds)
{
    RunUntil([] { return false; }, milliseconds);
}

}

TEST_CASE("Ratings say how often a script comes, and those that had their turn wait for others")
{
    Rotated all(12);
    all.ratings = { { "0", -1 }, { "1", 1 }, { "2", 2 }, { "4", 4 }, { "5", 5 } }; // others: none
    std::map<QString, int> counts;
    for (int turn = 0; turn < 6000; ++turn)
        ++counts[all.Next()];
    CHECK(counts["0"] == 0);
    CHECK(counts["1"] > 50);
    CHECK(counts["2"] > counts["1"] * 3 / 2);
    CHECK(counts["3"] > counts["2"] * 5 / 4);
    CHECK(counts["4"] > counts["3"] * 5 / 4);
    CHECK(counts["5"] > counts["4"] * 9 / 8); // as often as the waiting lets it
    CHECK(std::abs(counts["3"] - counts["6"]) < counts["3"] / 4);

    REQUIRE(all.chosen.size() == 6000);
    constexpr int resting = 11 / 3;
    for (qsizetype at = resting; at < all.chosen.size(); ++at)
        REQUIRE_FALSE(all.chosen.sliced(at - resting, resting).contains(all.chosen[at]));
}

TEST_CASE("Two take turns, one is not chosen twice, and none is where none may come")
{
    const Application application;
    Rotated two(2);
    const QString first = two.Next();
    CHECK(two.Next() != first);
    CHECK(two.Next() == first);
    two.ratings[first] = -1;
    CHECK(two.Next() != first);
    CHECK(two.Next() != first);
    CHECK(two.chosen.size() == 4);
    two.ratings = { { "0", -1 }, { "1", -1 } };
    two.Next();
    two.rotation.SetOn(true);
    CHECK(two.chosen.size() == 4);
    CHECK(two.rotation.IsOn());
    Rotated none(0);
    none.rotation.Next();
    none.rotation.Back();
    none.rotation.SetOn(true);
    CHECK(none.chosen.isEmpty());
    none.rotation.SetScripts({ "late" });
    CHECK(none.chosen == QStringList("late"));
}

TEST_CASE("Back and forward go through what was shown, as far as it still may be")
{
    Rotated all(9);
    CHECK_FALSE(all.rotation.CanGoBack());
    const QString a = all.Next();
    CHECK_FALSE(all.rotation.CanGoBack());
    const QString b = all.Next();
    const QString c = all.Next();
    CHECK(all.Back() == b);
    CHECK(all.Back() == a);
    CHECK_FALSE(all.rotation.CanGoBack());
    CHECK(all.Back() == a);
    CHECK(all.chosen.size() == 5); // it stayed
    CHECK(all.Next() == b);
    all.rotation.NoteShown(b); // once told, once in the history
    all.ratings[b] = -1;
    CHECK(all.Next() == c);
    CHECK(all.Back() == a);
    const QString mine = *std::find_if(all.scripts.begin(), all.scripts.end(),
        [&](const QString& script) { return script != a && script != b && script != c; });
    all.rotation.NoteShown(mine); // c lies in front no more
    CHECK(all.Next() != mine);
    CHECK(all.Back() == mine);
    CHECK(all.Back() == a);
    all.rotation.SetScripts({ mine, "x", "y" });
    CHECK(all.Next() == mine);
    CHECK_FALSE(all.rotation.CanGoBack());

    Rotated many(50);
    for (int turn = 0; turn < 2 * ScriptRotation::mostHistory; ++turn)
        many.Next();
    int steps = 0;
    for (; many.rotation.CanGoBack(); ++steps)
        many.rotation.Back();
    CHECK(steps == ScriptRotation::mostHistory - 1);
}

TEST_CASE("While it is on one comes each interval, and time can be held")
{
    const Application application;
    Rotated all(9);
    all.rotation.SetInterval(1); // a second at least
    all.rotation.SetOn(true);
    CHECK(all.chosen.size() == 1);
    QElapsedTimer time;
    time.start();
    CHECK(RunUntil([&] { return all.chosen.size() == 2; }));
    CHECK(time.elapsed() >= 950);

    all.rotation.SetHeld(true);
    Run(1300);
    CHECK(all.chosen.size() == 2);
    all.rotation.SetHeld(false);
    CHECK(RunUntil([&] { return all.chosen.size() == 3; }));
    all.rotation.SetInterval(60'000);
    all.rotation.NoteShown("8"); // time starts anew
    Run(1300);
    CHECK(all.chosen.size() == 3);
    all.rotation.SetInterval(1000); // it is long past
    CHECK(RunUntil([&] { return all.chosen.size() == 4; }));
    all.rotation.SetOn(false);
    Run(1300);
    CHECK(all.chosen.size() == 4);
}
