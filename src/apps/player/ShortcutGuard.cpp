#include "apps/player/ShortcutGuard.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>

namespace pxvis::player {

namespace {

bool IsMove(int key)
{
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
}

bool Needs(const QObject& control, const QKeyEvent& key)
{
    if (key.key() == Qt::Key_Escape) {
        const auto* widget = qobject_cast<const QWidget*>(&control);
        return widget && qobject_cast<const QDialog*>(widget->window());
    }
    if ((key.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier)) != 0)
        return false;
    const bool isText = !key.text().isEmpty() && key.text().front().isPrint();
    if (qobject_cast<const QAbstractButton*>(&control))
        return key.key() == Qt::Key_Space;
    if (qobject_cast<const QAbstractSlider*>(&control))
        return IsMove(key.key());
    if (qobject_cast<const QAbstractItemView*>(&control))
        return key.key() == Qt::Key_Up || key.key() == Qt::Key_Down;
    return (qobject_cast<const QLineEdit*>(&control) || qobject_cast<const QComboBox*>(&control)
               || qobject_cast<const QAbstractSpinBox*>(&control))
        && (isText || IsMove(key.key()));
}

}

bool ShortcutGuard::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::ShortcutOverride
        || !Needs(*watched, *static_cast<QKeyEvent*>(event)))
        return false;
    event->accept(); // the key comes as an ordinary one
    return true;
}

}
