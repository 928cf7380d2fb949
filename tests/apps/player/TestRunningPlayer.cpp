#include "apps/player/PlayerDesk.h"
#include "apps/player/RunningPlayer.h"
#include "apps/player/desktop/DesktopTesting.h"

#include <QDBusConnectionInterface>

using namespace pxvis::player;

TEST_CASE("A player that doesn't answer is passed by, and its place is taken when it ends")
{
    Application();
    const char* const name = "org.pxvis.Player";
    const SessionBus bus;
    FakeService hung(bus.Client(), name, "/org/pxvis/Player");
    RunningPlayer player;
    CHECK_FALSE(player.HandOver({ QUrl("file:///song") })); // its answer needs this thread
    hung.Stop();
    CHECK(PlayerDesk::WaitUntil(
        [&] { return bus.Client().interface()->serviceOwner(name).isValid(); }));
}

TEST_CASE("Files of any name are taken from players on the same screen, and nothing else")
{
    Application();
    RunningPlayer player;
    QList<QUrl> opened;
    int times = 0;
    QObject::connect(&player, &RunningPlayer::Opened, [&](const QList<QUrl>& files) {
        opened = files;
        ++times;
    });
    const QString here = qEnvironmentVariable("DISPLAY");
    CHECK_FALSE(player.Open({ "file:///a.ogg" }, here + "9"));
    CHECK(player.Open({ "file:///%FFodd%0A%23.ogg", "http://host/a.ogg", "", "a.ogg" }, here));
    CHECK(PlayerDesk::WaitUntil([&] { return times == 1; }));
    REQUIRE(opened.size() == 1);
    CHECK(PathOf(opened.first()) == "/\xFFodd\n#.ogg");
    CHECK(player.Open({}, here)); // to come to the front
    CHECK(PlayerDesk::WaitUntil([&] { return times == 2; }));
}
