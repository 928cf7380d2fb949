#pragma once

#include <QList>
#include <QUrl>
#include <QWidget>

namespace pxvis::player {

class PlayerActions;

// What stands in the picture's place as long as nothing is to be heard: the ways to start.
class InvitationPage : public QWidget
{
    Q_OBJECT

public:
    explicit InvitationPage(PlayerActions& actions, QWidget* parent = nullptr);

signals:
    void ListenAsked();
    void DemoAsked();
    void Dropped(const QList<QUrl>& urls);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

}
