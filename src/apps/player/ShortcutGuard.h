#pragma once

#include <QObject>

namespace pxvis::player {

// Leaves the keys that a focused control needs for itself to it, where an action of the player has
// the same: Space on a button, arrows in a list, letters in a field, Esc in a dialog. An event
// filter of the application's.
class ShortcutGuard : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override;
};

}
