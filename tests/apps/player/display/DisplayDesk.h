#pragma once

#include "ScreenPixels.h"
#include "TestFolder.h"
#include "TestVariable.h"
#include "XvfbDisplay.h"
#include "apps/player/display/DisplayArea.h"
#include "apps/player/display/VisualHost.h"
#include "apps/player/sound/HeardSound.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QThread>

#include <functional>
#include <string>

// What a test tells.
struct FakeSound final : pxvis::player::HeardSound
{
    bool Take(pxvis::host::AudioRecord& heard) override
    {
        ++taken;
        if (!plays)
            return false;
        heard = record;
        return true;
    }

    pxvis::host::AudioRecord record;
    bool plays = true;
    int taken = 0;
};

// A user's home with two scripts and a screen with the display area on it; once a process.
struct DisplayDesk
{
    static constexpr uint32_t red = 0xe02010;
    static constexpr uint32_t blue = 0x1030e0;
    static constexpr const char* library = PXVIS_BINARY_DIR "/bin/libpxvis.so";

    DisplayDesk()
    {
        AddScript("Test/Red.pxv", "0xE02010");
        AddScript("Test/Blue.pxv", "0x1030E0");
        host.SetSound(&sound);
    }

    void AddScript(const std::string& name, const std::string& color) const
    {
        const std::filesystem::path path = home / ("data/pxvis/Visualizations/Vis Studio/" + name);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << "<PXV Version=\"1.0\"><Component GUID=\"36267E6D-70E1-435e-9E2A-"
                               "428EEA2D3C7E\" Name=\"Flush\"><Properties><Color>"
                            << color << "</Color></Properties></Component></PXV>";
    }

    static bool RunUntil(const std::function<bool()>& isSo, int milliseconds = 10000)
    {
        QElapsedTimer time;
        for (time.start(); !isSo(); QThread::msleep(3)) {
            if (time.elapsed() > milliseconds)
                return false;
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        return true;
    }

    static void Run(int milliseconds)
    {
        RunUntil([] { return false; }, milliseconds);
    }

    ScreenPixels Pixels(const QWidget& window) const
    {
        return ScreenPixels(display.GetName(), static_cast<uint32_t>(window.internalWinId()));
    }

    // All of the window has that colour.
    bool Shows(const QWidget& window, uint32_t color) const
    {
        const ScreenPixels pixels = Pixels(window);
        const int all = pixels.GetWidth() * pixels.GetHeight();
        return all > 0 && pixels.Count(color, 0, 0, pixels.GetWidth(), pixels.GetHeight()) == all;
    }

    TestFolder home;
    TestVariable config { "XDG_CONFIG_HOME", home.Path("config").c_str() };
    TestVariable data { "XDG_DATA_HOME", home.Path("data").c_str() };
    TestVariable state { "XDG_STATE_HOME", home.Path("state").c_str() };
    TestVariable cache { "XDG_CACHE_HOME", home.Path("cache").c_str() };
    XvfbDisplay display;
    int argc = 1;
    char name[7] = "player";
    char* argv[2] = { name, nullptr };
    QApplication application { argc, argv };
    FakeSound sound;
    pxvis::player::VisualHost host;
};
