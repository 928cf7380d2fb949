#pragma once

#include <QString>

namespace pxvis::player {

// Chooses the platform before the application object is made: the visualizations live in X11
// windows, so a Wayland session is used through XWayland. Sets QT_QPA_PLATFORM, unless the user
// has. Gives the lines for a user who has no X display, what to install or start, or nothing if all
// is well.
QString ChooseDisplayPlatform();

// Shows a text to a user for whom no window can be made: on standard error, and as a notification
// of the desktop if there is one.
void TellWithoutWindow(const QString& text);

}
