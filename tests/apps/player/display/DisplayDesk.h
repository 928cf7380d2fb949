#pragma once

#include "ChildProcess.h"
#include "ScreenPixels.h"
#include "TestFolder.h"
#include "TestVariable.h"
#include "XvfbDisplay.h"
#include "apps/player/display/DisplayArea.h"
#include "apps/player/display/FakeSound.h"
#include "apps/player/display/VisualHost.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QThread>

#include <doctest/doctest.h>

#include <functional>
#include <string>

// A user's home with two scripts, and a window on a screen that has the area in its middle. Once a
// process.
class DisplayDesk
{
public:
    static constexpr uint32_t red = 0xe02010;
    static constexpr uint32_t blue = 0x1030e0;
    static constexpr uint32_t green = 0x40c040;
    static constexpr const char* library = PXVIS_BINARY_DIR "/bin/libpxvis.so";

    explicit DisplayDesk(bool isManaged = false)
    {
        AddScript("data/pxvis/Visualizations/Vis Studio/Test/Red.pxv", "0xE02010");
        AddScript("data/pxvis/Visualizations/Vis Studio/Test/Blue.pxv", "0x1030E0");
        // A cycle that a test shows stays where it is, however slow the machine.
        std::filesystem::create_directories(home / "config/pxvis");
        home.Write("config/pxvis/settings.xml",
            "<Settings><Key Path=\"Plugins\\Display\\Visualizations\">"
            "<Item Name=\"Script Cycle MS\">3600000</Item></Key></Settings>");
        if (isManaged)
            display.Start({ "openbox" });
        host.SetSound(&sound);
        window.setGeometry(100, 100, 500, 400);
        area.setGeometry(50, 30, 400, 300);
    }

    // False, with the reason printed, if there is no picture.
    bool Open()
    {
        window.show();
        QString error;
        const bool isThere = area.Start(library, error);
        CHECK(error == "");
        area.SetMode("Test\\Red");
        return isThere && RunUntil([&] { return IsShown(red); });
    }

    void AddScript(const std::string& name, const std::string& color) const
    {
        std::filesystem::create_directories((home / name).parent_path());
        home.Write(name,
            "<PXV Version=\"1.0\"><Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\" "
            "Name=\"Flush\"><Properties><Color>"
                + color + "</Color></Properties></Component></PXV>");
    }

    static bool RunUntil(const std::function<bool()>& isSo, int milliseconds = 30000)
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

    // What the user sees of a window, frames and all.
    ScreenPixels Pixels(const QWidget& seen) const
    {
        return ScreenPixels(display.GetName(), static_cast<uint32_t>(seen.internalWinId()));
    }

    // All of the picture, and nothing else, has the colour.
    bool IsShown(uint32_t color) const
    {
        const QWidget& seen = *area.PictureWindow();
        const ScreenPixels pixels = Pixels(seen);
        const QRect picture = area.IsFullScreen() ? seen.rect() : area.geometry();
        return pixels.Count(color, 0, 0, seen.width(), seen.height())
            == picture.width() * picture.height()
            && pixels.Count(
                   color, picture.left(), picture.top(), picture.right() + 1, picture.bottom() + 1)
            == picture.width() * picture.height();
    }

    // As a person does it.
    void Do(const std::vector<std::string>& input) const
    {
        std::vector<std::string> command { "xdotool" };
        command.insert(command.end(), input.begin(), input.end());
        ChildProcess(command).Wait(20, [] { Run(1); });
    }

    TestFolder home;
    TestVariable config { "XDG_CONFIG_HOME", home.Path("config").c_str() };
    TestVariable data { "XDG_DATA_HOME", home.Path("data").c_str() };
    TestVariable state { "XDG_STATE_HOME", home.Path("state").c_str() };
    TestVariable runtime { "XDG_RUNTIME_DIR", home.Path("").c_str() };
    XvfbDisplay display;
    int argc = 1;
    char name[7] = "player";
    char* argv[2] = { name, nullptr };
    QApplication application { argc, argv };
    FakeSound sound;
    pxvis::player::VisualHost host;
    QWidget window;
    pxvis::player::DisplayArea area { host, &window };
};
