#pragma once

#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>

namespace pxvis::player {

// What a user opens on a screen is played by the player that is there already: it has the name
// "org.pxvis.Player" on the session bus, and later ones hand it their files. Without a session bus
// each is on its own. User-interface thread.
class RunningPlayer : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.pxvis.Player")

public:
    RunningPlayer() = default;
    ~RunningPlayer() override;

    // True if another player took the files and came to the front. Otherwise this is the one from
    // now on, or once another that doesn't answer has ended. Takes some seconds at most.
    bool HandOver(const QList<QUrl>& files);

    // For the bus. False if this player is on another screen.
    Q_SCRIPTABLE bool Open(const QStringList& addresses, const QString& display);

signals:
    void Opened(const QList<QUrl>& files); // maybe none
};

}
