#include "apps/player/ListenMenu.h"

#include "apps/player/Player.h"
#include "apps/player/PlayerActions.h"

#include <QActionGroup>

namespace pxvis::player {

namespace {

// An "&" in a device's name is no mark for a key.
QString Plain(QString name)
{
    return name.replace('&', QStringLiteral("&&"));
}

}

ListenMenu::ListenMenu(Player& player, PlayerActions& actions, QWidget* parent)
    : QMenu(tr("&Sound"), parent)
    , m_player(player)
    , m_actions(actions)
{
    connect(this, &QMenu::aboutToShow, this, &ListenMenu::Fill);
}

void ListenMenu::Fill()
{
    for (QActionGroup* group : findChildren<QActionGroup*>())
        group->deleteLater();
    clear();

    auto* sources = new QActionGroup(this);
    const bool isListening = m_player.IsListening();
    const QString heard = m_player.ListeningDevice();
    AddHeading(tr("Show"));
    connect(Add(tr("The &Songs"), !isListening, *sources), &QAction::triggered, this,
        [this] { m_player.StopListening(); });
    addAction(m_actions.listen);
    for (const SoundDevice& device : m_player.Devices().Inputs()) {
        connect(Add(Plain(device.name), isListening && heard == device.id, *sources),
            &QAction::triggered, this, [this, id = device.id] { m_player.Listen(id); });
    }

    auto* outputs = new QActionGroup(this);
    const QString chosen = m_player.Output().Chosen();
    addSeparator();
    AddHeading(tr("Play the Songs On"));
    connect(Add(tr("The System's &Output"), chosen.isEmpty(), *outputs), &QAction::triggered, this,
        [this] { m_player.Output().Choose({}); });
    for (const SoundDevice& device : m_player.Devices().Outputs()) {
        connect(Add(Plain(device.name), device.id == chosen, *outputs), &QAction::triggered, this,
            [this, id = device.id] { m_player.Output().Choose(id); });
    }
    addSeparator();
    addAction(m_actions.settings);
}

void ListenMenu::AddHeading(const QString& text)
{
    addAction(text)->setEnabled(false);
}

QAction* ListenMenu::Add(const QString& text, bool isChosen, QActionGroup& group)
{
    QAction* action = addAction(text);
    action->setCheckable(true);
    action->setChecked(isChosen);
    group.addAction(action);
    return action;
}

}
