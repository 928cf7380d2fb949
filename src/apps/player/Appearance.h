#pragma once

#include <QColor>

class QApplication;
class QLabel;
class QString;

namespace pxvis::player {

// How all windows of the player look: dark, so that the picture is the brightest thing.
struct Appearance
{
    static void ApplyTo(QApplication& application);

    static QLabel* MakeHeading(const QString& text); // of a dialog's part

    static QColor Accent(); // what is on, chosen or played
    static QColor Dimmed(); // beside the text that matters
    static QColor Line(); // between areas, and behind sliders
};

}
