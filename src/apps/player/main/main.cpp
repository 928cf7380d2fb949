#include "apps/player/Appearance.h"
#include "apps/player/MainWindow.h"
#include "apps/player/Player.h"
#include "apps/player/PlayerIcons.h"
#include "apps/player/RunningPlayer.h"
#include "apps/player/ShortcutGuard.h"
#include "apps/player/desktop/DisplayPlatform.h"
#include "apps/player/desktop/MprisService.h"
#include "apps/player/main/EndSignals.h"

#include <CLI/CLI.hpp>

#include <QApplication>
#include <QFile>
#include <QUrl>

#include <exception>
#include <filesystem>
#include <iostream>

namespace {

constexpr int usageStatus = 2;

struct Options
{
    std::string script;
    bool play = false;
    bool listen = false;
    bool isNew = false;
    std::vector<std::string> files;
};

// False, with the status to end with, if that is all there is to do.
bool Read(int argc, char** argv, Options& options, int& status)
{
    CLI::App app(
        "Plays songs, or listens to what the computer plays, and shows them.", "pxvis-player");
    app.set_version_flag("--version", "pxvis-player " PXVIS_VERSION);
    app.add_option("--script", options.script,
        "The script's file, which is shown in its new form "
        "whenever it is saved");
    CLI::Option* play = app.add_flag("--play", options.play, "Go on with the song at once");
    app.add_flag(
           "--listen", options.listen, "Listen to what the computer plays, or what was listened to")
        ->excludes(play);
    app.add_flag("--new", options.isNew, "A player of its own, also where one is open");
    app.add_option("FILES", options.files, "Songs, folders and playlists; the first is played");
    try {
        app.parse(argc, argv);
        return true;
    } catch (const CLI::Success& request) {
        status = app.exit(request);
    } catch (const CLI::Error& error) {
        std::cerr << "pxvis-player: " << error.what() << " (--help tells more)\n";
        status = usageStatus;
    }
    return false;
}

std::string PathOf(const std::string& name)
{
    std::error_code fault;
    return name.empty() ? name : std::filesystem::absolute(name, fault).lexically_normal().string();
}

// Desktops hand files over as addresses.
QUrl UrlOf(const std::string& name)
{
    return name.starts_with("file://") ? QUrl::fromEncoded(QByteArray::fromStdString(name))
                                       : pxvis::player::UrlOf(PathOf(name));
}

QIcon WindowIcon()
{
    QIcon icon;
    for (const int size : { 16, 32, 48, 64, 128, 256 })
        icon.addFile(QStringLiteral(":/icons/%1x%1/apps/pxvis.png").arg(size), { size, size });
    return icon;
}

int Run(int argc, char** argv)
{
    using namespace pxvis::player;
    Options options;
    int status = 0;
    if (!Read(argc, argv, options, status))
        return status;

    const QString fault = ChooseDisplayPlatform();
    if (!fault.isEmpty()) {
        TellWithoutWindow(fault);
        return 1;
    }
    int count = 1; // Qt takes none of the options
    QApplication application(count, argv);
    QCoreApplication::setApplicationName("pxvis-player");
    QCoreApplication::setApplicationVersion(PXVIS_VERSION);
    QGuiApplication::setApplicationDisplayName({});
    QGuiApplication::setDesktopFileName("pxvis-player");
    QGuiApplication::setWindowIcon(WindowIcon());
    Appearance::ApplyTo(application);
    ShortcutGuard guard;
    application.installEventFilter(&guard);

    QList<QUrl> files;
    for (const std::string& file : options.files)
        files.append(UrlOf(file));
    RunningPlayer running;
    const bool isOnItsOwn
        = options.isNew || options.play || options.listen || !options.script.empty();
    if (!isOnItsOwn && running.HandOver(files))
        return 0;

    Player player;
    MainWindow window(player);
    const EndSignals endSignals([&window] { window.close(); });
    const MprisService mpris(player);
    player.Restore();
    window.show();
    window.Start(QFile::decodeName(PathOf(options.script).c_str()));
    QObject::connect(
        &running, &RunningPlayer::Opened, &player, [&player](const QList<QUrl>& opened) {
            player.Raise();
            if (!opened.isEmpty())
                player.Open(opened);
        });

    if (!files.isEmpty())
        player.Open(files);
    else if (options.play)
        player.Play();
    if (options.listen)
        player.Listen(player.ListeningDevice());
    return QApplication::exec();
}

}

int main(int argc, char** argv)
{
    try {
        return Run(argc, argv);
    } catch (const std::exception& fault) {
        std::cerr << "pxvis-player: " << fault.what() << '\n';
    }
    return 1;
}
