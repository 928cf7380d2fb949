#include "apps/player/main/PlayerProgram.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>

#include <chrono>
#include <cmath>
#include <doctest/doctest.h>
#include <numbers>
#include <thread>
#include <xcb/xcb.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int EndSeconds = 60;

const QString service = QStringLiteral("org.mpris.MediaPlayer2.pxvis");
const QString path = QStringLiteral("/org/mpris/MediaPlayer2");
const QString root = QStringLiteral("org.mpris.MediaPlayer2");
const QString player = QStringLiteral("org.mpris.MediaPlayer2.Player");

QDBusMessage Call(const QDBusConnection& bus, const QString& interface, const char* method,
    const QVariantList& arguments)
{
    constexpr int milliseconds = 30000;
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return bus.call(message, QDBus::Block, milliseconds);
}

std::string Number(int value, int bytes)
{
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> (8 * i));
    return text;
}

}

PlayerProgram::PlayerProgram()
{
    const auto set = [this](const char* name, const std::string& value) {
        m_variables.push_back(std::make_unique<TestVariable>(name, value.c_str()));
    };
    for (const char* folder : { "config", "data", "state", "cache", "run" })
        std::filesystem::create_directories(m_home / folder);
    std::filesystem::permissions(m_home / "run", std::filesystem::perms::owner_all);
    set("HOME", m_home.Path("."));
    set("XDG_CONFIG_HOME", m_home.Path("config"));
    set("XDG_DATA_HOME", m_home.Path("data"));
    set("XDG_STATE_HOME", m_home.Path("state"));
    set("XDG_CACHE_HOME", m_home.Path("cache"));
    set("XDG_RUNTIME_DIR", m_home.Path("run"));
    set("PULSE_SERVER", "unix:" + SoundSocket());
    set("QT_QPA_PLATFORM", "");
    // What desktop libraries and drivers leave to the end of the process is not ours.
    set("ASAN_OPTIONS", "detect_leaks=0");
    REQUIRE(m_display.IsRunning());
    REQUIRE(m_bus.IsRunning());
    m_display.Start({ "openbox" });
}

PlayerProgram::~PlayerProgram() = default;

std::string PlayerProgram::AddFile(const std::string& name, std::string_view bytes) const
{
    std::filesystem::create_directories((m_home / name).parent_path());
    m_home.Write(name, bytes);
    return m_home.Path(name);
}

std::string PlayerProgram::AddScript(const std::string& name, uint32_t color) const
{
    char digits[9] = {};
    snprintf(digits, sizeof digits, "0x%06X", color);
    return AddFile("data/pxvis/Visualizations/Vis Studio/" + name + ".pxv",
        "<PXV Version=\"1.0\"><Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\" "
        "Name=\"Flush\"><Properties><Color>"
            + std::string(digits) + "</Color></Properties></Component></PXV>");
}

std::string PlayerProgram::AddSong(const std::string& name, int seconds) const
{
    constexpr int rate = 8000;
    constexpr double frequency = 220;
    std::string samples;
    for (int i = 0; i < seconds * rate; ++i)
        samples += static_cast<char>(
            128 + std::lround(60 * std::sin(2 * std::numbers::pi * frequency * i / rate)));
    const int size = static_cast<int>(samples.size());
    return AddFile(name,
        "RIFF" + Number(36 + size, 4) + "WAVEfmt " + Number(16, 4) + Number(1, 2) + Number(1, 2)
            + Number(rate, 4) + Number(rate, 4) + Number(1, 2) + Number(8, 2) + "data"
            + Number(size, 4) + samples);
}

void PlayerProgram::WriteSettings(const std::string& script, const std::string& more) const
{
    AddFile("config/pxvis/settings.xml",
        "<Settings><Key Path=\"Plugins\\Display\\Visualizations\"><Item Name=\"Current Script\">"
            + script + "</Item></Key><Key Path=\"Player\"><Item Name=\"Rotation\">0</Item></Key>"
            + more + "</Settings>");
}

bool PlayerProgram::Start(const std::vector<std::string>& arguments)
{
    std::vector<std::string> command { PXVIS_BINARY_DIR "/bin/pxvis-player" };
    command.insert(command.end(), arguments.begin(), arguments.end());
    m_program = std::make_unique<ChildProcess>(command);
    return WaitUntil([&] {
        if (!m_bus.Client().interface()->isServiceRegistered(service)
            || !Ask("PlaybackStatus").isValid())
            return false;
        // A window that was there before the window manager isn't made active by it.
        if (ActiveWindow().id == 0)
            ChildProcess({ "xdotool", "search", "--onlyvisible", "--class", "pxvis-player",
                             "windowactivate" })
                .Wait(5);
        return ActiveWindow().id != 0;
    });
}

int PlayerProgram::Quit()
{
    Call(m_bus.Client(), root, "Quit", {});
    const int status = m_program->Wait(EndSeconds);
    m_program.reset();
    return status;
}

QVariant PlayerProgram::Ask(const char* property) const
{
    const QVariant answer
        = Call(m_bus.Client(), "org.freedesktop.DBus.Properties", "Get", { player, property })
              .arguments()
              .value(0);
    return answer.value<QDBusVariant>().variant();
}

QString PlayerProgram::Title() const
{
    return qdbus_cast<QVariantMap>(Ask("Metadata")).value("xesam:title").toString();
}

double PlayerProgram::Position() const
{
    return Ask("Position").toDouble() / 1e6;
}

void PlayerProgram::Tell(const char* method, const QVariantList& arguments) const
{
    CHECK(Call(m_bus.Client(), player, method, arguments).type() == QDBusMessage::ReplyMessage);
}

void PlayerProgram::Set(const char* property, const QVariant& value) const
{
    Call(m_bus.Client(), "org.freedesktop.DBus.Properties", "Set",
        { player, property, QVariant::fromValue(QDBusVariant(value)) });
}

void PlayerProgram::Use(const std::vector<std::string>& command) const
{
    std::vector<std::string> all { "xdotool" };
    all.insert(all.end(), command.begin(), command.end());
    CHECK(ChildProcess(all).Wait(30) == 0);
}

PlayerProgram::Window PlayerProgram::ActiveWindow() const
{
    Window window;
    xcb_connection_t* connection = xcb_connect(m_display.GetName().c_str(), nullptr);
    const auto take = [](auto* reply, auto use) {
        if (reply)
            use(*reply);
        free(reply);
    };
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const std::string name = "_NET_ACTIVE_WINDOW";
    xcb_atom_t active = XCB_ATOM_NONE;
    take(xcb_intern_atom_reply(connection,
             xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.data()),
             nullptr),
        [&](const auto& reply) { active = reply.atom; });
    take(xcb_get_property_reply(connection,
             xcb_get_property(connection, 0, root, active, XCB_ATOM_WINDOW, 0, 1), nullptr),
        [&](const auto& reply) {
            if (xcb_get_property_value_length(&reply) == sizeof(xcb_window_t))
                window.id = *static_cast<const xcb_window_t*>(xcb_get_property_value(&reply));
        });
    take(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window.id), nullptr),
        [&](const auto& reply) {
            window.width = reply.width;
            window.height = reply.height;
        });
    take(xcb_translate_coordinates_reply(
             connection, xcb_translate_coordinates(connection, window.id, root, 0, 0), nullptr),
        [&](const auto& reply) {
            window.left = reply.dst_x;
            window.top = reply.dst_y;
        });
    xcb_disconnect(connection);
    return window;
}

double PlayerProgram::PartOf(uint32_t color) const
{
    const ScreenPixels pixels(m_display.GetName());
    const int width = pixels.GetWidth();
    const int height = pixels.GetHeight();
    return width == 0 ? 0 : double(pixels.Count(color, 0, 0, width, height)) / width / height;
}

bool PlayerProgram::IsMoving() const
{
    const ScreenPixels before(m_display.GetName());
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const ScreenPixels after(m_display.GetName());
    int different = 0;
    for (int y = 0; y < before.GetHeight(); ++y) {
        for (int x = 0; x < before.GetWidth(); ++x)
            different += before.At(x, y) != after.At(x, y);
    }
    return different > before.GetWidth() * before.GetHeight() / 100;
}

bool PlayerProgram::WaitUntil(const std::function<bool()>& isSo, int seconds)
{
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    while (!isSo()) {
        if (Clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return true;
}
