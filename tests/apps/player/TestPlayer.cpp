#include "apps/player/PlayerDesk.h"

#include <filesystem>

using namespace pxvis::player;

TEST_CASE("Songs that can't be played are passed over with one message, and never without end")
{
    PlayerDesk desk;
    Player& player = *desk.player;
    desk.AddSong("first.wav", 0.6);
    std::filesystem::rename(desk.home.Path("first.wav"), desk.home.Path("f\xEFrst.wav"));
    const QUrl first = desk.UrlOf("f\xEFrst.wav"); // as names on old disks are
    const QUrl last = desk.AddSong("last.wav", 0.6);
    desk.home.Write("broken.wav", "no song");
    desk.Fill({ desk.UrlOf("gone.wav"), first, desk.UrlOf("broken.wav"), desk.UrlOf("away.wav"),
        last, desk.UrlOf("lost.wav") });
    player.PlayRow(0);
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(1); }));
    CHECK(player.Songs().At(0).isMissing);
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(4); }));
    CHECK_FALSE(player.Songs().At(2).isMissing);
    CHECK_FALSE(player.Songs().IsPlayable(2));
    CHECK(player.Songs().IsPlayable(1));
    CHECK(player.Songs().At(3).isMissing);
    CHECK(desk.WaitUntil([&] { return desk.IsStopped() && player.IsAtEnd(); }));
    player.Play();
    CHECK_FALSE(player.IsAtEnd());
    player.Stop();
    REQUIRE(desk.messages.size() == 3);
    CHECK(desk.messages[0].startsWith("gone can't be played: "));
    CHECK(desk.messages[1].startsWith("broken can't be played: "));
    CHECK(desk.messages[1].endsWith(" (and 1 more)"));
    CHECK(player.Library().PlayCount(first) == 1);
    CHECK(player.Library().PlayCount(last) == 1);

    // Behind the end of the list is its beginning.
    desk.messages.clear();
    player.Songs().Remove({ 1, 4 });
    player.SetLoop(PlayerStatus::Loop::Playlist);
    player.PlayRow(0);
    CHECK(desk.WaitUntil([&] { return !desk.messages.isEmpty(); }));
    CHECK(desk.IsStopped());
    CHECK(desk.messages.size() == 1);
    CHECK(desk.messages[0].startsWith("None of the 4 songs can be played. "));

    // One that is there again can be played as far as anybody knows.
    player.Add({ desk.AddSong("gone.wav", 0.6) });
    CHECK(desk.WaitUntil([&] { return player.Songs().IsPlayable(0); }));
}

TEST_CASE("What is heard next is what the list says when a song ends")
{
    PlayerDesk desk;
    Player& player = *desk.player;
    const QUrl a = desk.AddSong("a.wav", 2.5);
    const QUrl b = desk.AddSong("b.wav", 30);
    const QUrl c = desk.AddSong("c.wav", 30);
    desk.Fill({ a, b, c });
    player.PlayRow(0);
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(0); }));
    CHECK_FALSE(player.Status().canGoPrevious);
    const qint64 number = player.Status().trackNumber;
    player.Songs().Move({ 2 }, 1);
    CHECK(player.Status().trackNumber == number);
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(1); }));
    CHECK(player.Status().url == c);
    CHECK(player.Status().canGoPrevious);
    CHECK(player.Status().trackNumber != number);
    CHECK(player.Library().PlayCount(a) == 1);

    // Taken out while it is heard, it is followed by what has its place now.
    player.Songs().Remove({ 1 });
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(1) && player.Status().url == b; }));
    CHECK(player.Library().PlayCount(c) == 0);
    player.Previous();
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(0); }));
    player.SetLoop(PlayerStatus::Loop::Track);
    CHECK(desk.WaitUntil([&] { return player.Library().PlayCount(a) == 2; }));
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(0) && player.Position() < 1'000'000; }));
    player.SetLoop(PlayerStatus::Loop::None);
    player.PlayRow(1);
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(1) && player.Status().canSeek; }));
    player.SeekTo(29'500'000);
    CHECK(desk.WaitUntil([&] { return desk.IsStopped(); }));
    CHECK(player.Library().PlayCount(b) == 0);
    player.Songs().Clear();
    CHECK(desk.IsStopped());
    CHECK(player.Status().title.isEmpty());
    CHECK(desk.messages.isEmpty());
}

TEST_CASE("Opened songs are played and stand in the list once, added ones wait")
{
    PlayerDesk desk;
    Player& player = *desk.player;
    const QUrl a = desk.AddSong("a.wav", 30);
    const QUrl b = desk.AddSong("b.wav", 30);
    player.Open({ a });
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(0); }));
    player.Add({ b });
    CHECK(desk.WaitUntil([&] { return player.Songs().Count() == 2; }));
    CHECK(player.Songs().Current() == 0);
    player.Open({ b, a });
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(0) && player.Status().url == b; }));
    CHECK(player.Songs().Count() == 2);
    CHECK(player.Songs().At(1).url == a);
    CHECK(player.Library().Recent() == QList<QUrl> { a, b });
    player.Open({ a });
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(1) && player.Status().url == a; }));
    const QUrl c = desk.AddSong("c.wav", 30);
    player.Open({ b, c });
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(1) && player.Status().url == b; }));
    CHECK(player.Songs().At(0).url == a);
    CHECK(player.Songs().At(2).url == c);
    player.Open({ desk.UrlOf("nothing") });
    CHECK(desk.WaitUntil([&] { return !desk.messages.isEmpty(); }));
    CHECK(desk.IsPlaying(1));
    player.Stop();
    player.Songs().SetCurrent(0);
    player.Stop();
    player.Previous();
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(0); }));
    player.RateSong(b, 4);
    CHECK(player.Library().Rating(b) == 4);
}

TEST_CASE("All is as it was in the next run, but paused, and an unreadable list is put aside")
{
    PlayerDesk desk;
    desk.player->Restore();
    CHECK(desk.player->Songs().Count() == 0);
    desk.Fill({ desk.AddSong("a.wav", 60), desk.AddSong("b.wav", 60) });
    desk.player->SetShuffled(true);
    desk.player->SetLoop(PlayerStatus::Loop::Playlist);
    desk.player->SetVolume(0.25);
    desk.player->SetMuted(true);
    desk.player->Output().SetDelay(120);
    desk.player->PlayRow(1);
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(1) && desk.player->Status().canSeek; }));
    desk.player->SeekTo(40'000'000);
    CHECK(desk.WaitUntil([&] { return desk.player->Position() > 40'100'000; }));

    SUBCASE("after its end")
    {
        desk.EndPlayer();
    }
    SUBCASE("after a crash, too, as far as it was kept")
    {
        desk.player->Remember();
        desk.player->SetVolume(0.75);
        const std::string settings = desk.home.Read("config/pxvis/settings.xml");
        desk.EndPlayer();
        desk.home.Write("config/pxvis/settings.xml", settings);
    }
    SUBCASE("also when another one was open meanwhile")
    {
        desk.player->Remember();
        {
            Player other(QStringLiteral("fakesink sync=true"));
            other.Restore();
            CHECK(other.Songs().Count() == 2);
            other.Songs().Clear();
            other.SetVolume(0.75);
            other.Remember();
        }
        desk.EndPlayer();
    }
    desk.StartPlayer();
    desk.player->Restore();
    const PlayerStatus status = desk.player->Status();
    CHECK(status.state == PlayerStatus::State::Paused);
    CHECK(status.url == desk.UrlOf("b.wav"));
    CHECK(desk.player->Position() > 40'000'000);
    CHECK(desk.player->Position() < 55'000'000);
    CHECK(status.isShuffled);
    CHECK(status.loop == PlayerStatus::Loop::Playlist);
    CHECK(status.volume == doctest::Approx(0.25));
    CHECK(desk.player->IsMuted());
    CHECK(desk.player->Output().Delay() == 120);

    desk.EndPlayer();
    std::filesystem::remove(desk.home / "data/pxvis/player/playlist.m3u8");
    std::filesystem::create_directory(desk.home / "data/pxvis/player/playlist.m3u8");
    desk.home.Write("config/pxvis/settings.xml", "<Settings><Key Path=\"Player\">");
    desk.StartPlayer();
    desk.player->Restore();
    CHECK(desk.player->Songs().Count() == 0);
    CHECK(std::filesystem::exists(desk.home / "data/pxvis/player/playlist.m3u8.unreadable-1"));
    REQUIRE(desk.messages.size() == 1);
    CHECK(desk.messages[0].contains("settings were damaged"));
    CHECK(desk.messages[0].contains("playlist.m3u8.unreadable-1"));
}
