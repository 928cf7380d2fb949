#pragma once

#include <QDialog>

namespace pxvis::player {

class PlayerActions;

// The keys, read from the actions themselves.
class ShortcutsDialog : public QDialog
{
    Q_OBJECT

public:
    ShortcutsDialog(const PlayerActions& actions, QWidget* parent);
};

}
