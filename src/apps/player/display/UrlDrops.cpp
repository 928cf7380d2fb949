#include "apps/player/display/UrlDrops.h"

#include <QDropEvent>
#include <QMimeData>
#include <QWidget>

namespace pxvis::player {

UrlDrops::UrlDrops(QWidget& widget)
    : QObject(&widget)
{
    widget.setAcceptDrops(true);
    widget.installEventFilter(this);
}

bool UrlDrops::eventFilter(QObject*, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
        return false;
    auto& drop = *static_cast<QDropEvent*>(event); // the base of all three
    if (!drop.mimeData()->hasUrls())
        return false;
    // The files stay where they are, whatever the other program offers first.
    drop.setDropAction(Qt::CopyAction);
    drop.accept();
    if (type == QEvent::Drop)
        emit Dropped(drop.mimeData()->urls());
    return true;
}

}
