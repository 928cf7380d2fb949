#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

class QWidget;

namespace pxvis::player {

// Lets files be dropped on a widget, which owns this.
class UrlDrops : public QObject
{
    Q_OBJECT

public:
    explicit UrlDrops(QWidget& widget);

signals:
    void Dropped(const QList<QUrl>& urls);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}
