#pragma once

#include "ChildProcess.h"
#include "ScreenPixels.h"
#include "SessionBus.h"
#include "TestFolder.h"
#include "TestVariable.h"
#include "XvfbDisplay.h"

#include <QCoreApplication>
#include <QVariant>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// The player's program as a user has it: on a screen with a window manager, on a session bus, in a
// home that begins empty. Without a sound server, unless there is one at SoundSocket.
class PlayerProgram
{
public:
    static constexpr uint32_t red = 0xe02010;
    static constexpr uint32_t blue = 0x1030e0;

    PlayerProgram();
    ~PlayerProgram();

    // Of one colour; the path.
    std::string AddScript(const std::string& name, uint32_t color) const;

    // Of tone, as WAV; the path.
    std::string AddSong(const std::string& name, int seconds) const;
    std::string AddFile(const std::string& name, std::string_view bytes) const; // the path

    // The settings file with the script shown at first, and no rotation; `more` goes behind.
    void WriteSettings(const std::string& script, const std::string& more = {}) const;

    // True once it can be steered.
    bool Start(const std::vector<std::string>& arguments = {});
    // As by Quit of a desktop's panel; its status, or minus the signal that ended it.
    int Quit();

    QVariant Ask(const char* property) const; // of MPRIS's Player; invalid if it doesn't answer
    QString Title() const;
    double Position() const; // s
    void Tell(const char* method, const QVariantList& arguments = {}) const;
    void Set(const char* property, const QVariant& value) const;

    bool IsPlaying() const { return Ask("PlaybackStatus") == "Playing"; }

    // By xdotool: "key F11", "mousemove 100 100 click 1".
    void Use(const std::vector<std::string>& command) const;

    void Press(const std::string& keys) const { Use({ "key", keys }); }

    struct Window
    {
        uint32_t id = 0;
        int left = 0; // of the screen, without its frame
        int top = 0;
        int width = 0;
        int height = 0;
    };

    // The one that the user works with; 0 without any.
    Window ActiveWindow() const;

    // Of all the screen's pixels.
    double PartOf(uint32_t color) const;
    // Whether one picture differs from the next in much more than a clock.
    bool IsMoving() const;

    static bool WaitUntil(const std::function<bool()>& isSo, int seconds = 60);

    const TestFolder& Home() const { return m_home; }

    std::string SoundSocket() const { return m_home.Path("run/sound"); }

    const XvfbDisplay& Display() const { return m_display; }

private:
    int m_count = 1;
    char m_name[5] = "test";
    char* m_arguments[2] = { m_name, nullptr };
    QCoreApplication m_application { m_count, m_arguments };
    TestFolder m_home;
    std::vector<std::unique_ptr<TestVariable>> m_variables;
    XvfbDisplay m_display;
    SessionBus m_bus;
    std::unique_ptr<ChildProcess> m_program;
};
