#pragma once

#include "TestFolder.h"
#include "TestFolderVariable.h"
#include "TestVariable.h"
#include "apps/player/Player.h"
#include "foundation/OQSiblingModules.h"
#include "host/GStreamer.h"
#include "host/SongFile.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QStringList>
#include <QThread>

#include <doctest/doctest.h>

#include <functional>
#include <string>
#include <vector>

// The process's application, with no display and no desktop.
inline QApplication& Application()
{
    static const TestVariable platform("QT_QPA_PLATFORM", "offscreen");
    static const TestVariable display("DISPLAY", nullptr);
    static const TestVariable bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = { name, nullptr };
    // Not destroyed: at the process's exit parts of Qt's would be gone before.
    static auto* const application = new QApplication(count, arguments);
    std::string error;
    pxvis::host::InitializeGStreamer(error);
    return *application;
}

// A user's home that begins empty, with a player that is heard nowhere.
class PlayerDesk
{
public:
    PlayerDesk()
    {
        Application();
        StartPlayer();
    }

    ~PlayerDesk()
    {
        player.reset();
        OQSiblingModules::Get().Unload();
    }

    void StartPlayer()
    {
        player = std::make_unique<pxvis::player::Player>(QStringLiteral("fakesink sync=true"));
        QObject::connect(player.get(), &pxvis::player::Player::Message,
            [this](const QString& text) { messages << text; });
    }

    void EndPlayer()
    {
        player.reset();
        OQSiblingModules::Get().Unload(); // what is read next comes from the file
        messages.clear();
    }

    QUrl AddSong(const std::string& name, double seconds) const
    {
        std::string error;
        const std::vector<float> silence(2 * static_cast<size_t>(seconds * 44100));
        REQUIRE(WriteSongFile(
            home.Path(name), silence, "audio/x-raw,format=S16LE ! wavenc", nullptr, error));
        return UrlOf(name);
    }

    QUrl UrlOf(const std::string& name) const { return pxvis::player::UrlOf(home.Path(name)); }

    void Fill(const QList<QUrl>& urls) const
    {
        QList<pxvis::player::Song> songs;
        for (const QUrl& url : urls) {
            pxvis::player::Song song;
            song.url = url;
            song.isRead = true;
            songs.append(song);
        }
        player->Songs().Insert(songs);
    }

    static bool WaitUntil(const std::function<bool()>& isSo, int milliseconds = 60000)
    {
        QElapsedTimer timer;
        timer.start();
        while (!isSo()) {
            if (timer.elapsed() > milliseconds)
                return false;
            Application().processEvents();
            QThread::msleep(3);
        }
        return true;
    }

    bool IsPlaying(int row) const
    {
        return player->Songs().Current() == row && player->Position() > 0
            && player->Status().state == pxvis::player::PlayerStatus::State::Playing;
    }

    bool IsStopped() const
    {
        return player->Status().state == pxvis::player::PlayerStatus::State::Stopped;
    }

    const TestFolder home;
    std::unique_ptr<pxvis::player::Player> player;
    QStringList messages;

private:
    TestFolderVariable m_config { "XDG_CONFIG_HOME", home.Path("config").c_str() };
    TestFolderVariable m_data { "XDG_DATA_HOME", home.Path("data").c_str() };
};
