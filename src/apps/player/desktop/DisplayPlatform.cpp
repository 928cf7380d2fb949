#include "apps/player/desktop/DisplayPlatform.h"

#include "os/StandardError.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

#include <fcntl.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace pxvis::player {

namespace {

QString Translated(const char* text)
{
    return QCoreApplication::translate("pxvis::player::DisplayPlatform", text);
}

bool DisplayAnswers()
{
    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

void Notify(const QString& text)
{
    const QString name = QStringLiteral("org.freedesktop.Notifications");
    QDBusMessage message = QDBusMessage::createMethodCall(
        name, QStringLiteral("/org/freedesktop/Notifications"), name, QStringLiteral("Notify"));
    constexpr uint replaced = 0;
    constexpr int asLongAsUsual = -1;
    message << QStringLiteral("pxvis") << replaced << QStringLiteral("pxvis-player")
            << Translated("pxvis can't show its window") << text.toHtmlEscaped() << QStringList()
            << QVariantMap() << asLongAsUsual;
    QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("pxvis-notify"))
        .call(message);
}

}

QString ChooseDisplayPlatform()
{
    constexpr const char* platform = "QT_QPA_PLATFORM";
    if (!qEnvironmentVariableIsEmpty(platform))
        return {};
    if (!qEnvironmentVariableIsEmpty("DISPLAY") && DisplayAnswers()) {
        qputenv(platform, "xcb");
        return {};
    }
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return Translated("pxvis shows its pictures through X11, and this Wayland session has no "
                          "XWayland to do that with.\n"
                          "Install XWayland (the package xwayland), then log in again.");
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return Translated("There is no display to show a window on: DISPLAY is not set.\n"
                          "Start pxvis-player from a desktop.");
    return Translated("The X server of the display \"%1\" does not answer.\n"
                      "Start pxvis-player from a desktop, or set DISPLAY to one that runs.")
        .arg(qEnvironmentVariable("DISPLAY"));
}

void TellWithoutWindow(const QString& text)
{
    os::WriteStandardError(text.toStdString() + "\n");
    // A bus that hangs must not keep the caller, nor the process from ending: so somebody else
    // waits for it, and not for long.
    constexpr unsigned mostSeconds = 5;
    if (fork() != 0)
        return;
    alarm(mostSeconds);
    const int nothing = open("/dev/null", O_RDWR);
    for (const int standard : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO })
        dup2(nothing, standard);
    Notify(text);
    _exit(0);
}

}
