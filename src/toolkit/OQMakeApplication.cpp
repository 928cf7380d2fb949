#include "toolkit/OQMakeApplication.h"

#include "foundation/OQLog.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QSessionManager>

#include <clocale>
#include <dlfcn.h>
#include <string>
#include <xcb/xcb.h>

namespace {

constexpr const OQChar* Scope = u"OQMakeApplication";

bool HasDisplay()
{
    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    const bool hasDisplay = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    if (!hasDisplay)
        OQLog(OQLogError, Scope, u"There is no X11 display to be had.");
    return hasDisplay;
}

// Where Qt looks, in its order.
QStringList PluginFolders()
{
    QStringList folders;
    const QString own = qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH");
    if (!own.isEmpty())
        folders << own.split(u':');
    const QString all = qEnvironmentVariable("QT_PLUGIN_PATH");
    for (const QString& folder : all.split(u':', Qt::SkipEmptyParts))
        folders << folder + QLatin1String("/platforms");
    return folders << QLibraryInfo::path(QLibraryInfo::PluginsPath) + QLatin1String("/platforms");
}

// Qt ends the process if its plugin can't be loaded, as when a library is missing that it needs.
bool HasPlatformPlugin()
{
    std::string reason = "libqxcb.so was not found";
    for (const QString& folder : PluginFolders()) {
        const std::string path = (folder + QLatin1String("/libqxcb.so")).toStdString();
        if (dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL)) // stays for Qt
            return true;
        if (const char* const text = dlerror())
            reason = text;
    }
    OQLog(OQLogError, Scope, u"Qt has no plugin for X11: %s", { reason.c_str() });
    return false;
}

// A saved session starts the host, not us.
void StayOutOfSessions(QSessionManager& manager)
{
    manager.setRestartHint(QSessionManager::RestartNever);
}

}

bool OQMakeApplication()
{
    if (!HasDisplay() || !HasPlatformPlugin())
        return false;
    // Qt keeps both, and the texts. The generic theme, since that of a desktop may load GTK into a
    // host that has another version of it.
    static char name[] = "pxvis";
    static char platform[] = "-platform";
    static char xcb[] = "xcb";
    static char theme[] = "-platformtheme";
    static char generic[] = "generic";
    static char* arguments[] = { name, platform, xcb, theme, generic, nullptr };
    static int argumentCount = 5;

    const char* const current = setlocale(LC_ALL, nullptr);
    const std::string locale = current ? current : "C";
    auto* const application = new QApplication(argumentCount, arguments);
    setlocale(LC_ALL, locale.c_str()); // Qt takes the user's
    QGuiApplication::setQuitOnLastWindowClosed(false);
    for (auto signal : { &QGuiApplication::saveStateRequest, &QGuiApplication::commitDataRequest })
        QObject::connect(application, signal, application, StayOutOfSessions, Qt::DirectConnection);
    return true;
}
