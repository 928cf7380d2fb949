#pragma once

#include <QObject>

#include <memory>

namespace pxvis::player {

class PlayerControls;

// Lets the desktop, its media keys and its panels see and steer the player: org.mpris.MediaPlayer2
// and .Player on the session bus (MPRIS D-Bus Interface Specification 2.2), as
// "org.mpris.MediaPlayer2.pxvis", with ".instance" and the process's number behind it if another
// player has that name. Without a session bus it does nothing. User-interface thread.
class MprisService : public QObject
{
    Q_OBJECT

public:
    explicit MprisService(PlayerControls& controls); // which outlive it
    ~MprisService() override;

    bool IsOnBus() const;

private:
    struct Bus;

    std::unique_ptr<Bus> m_bus;
};

}
