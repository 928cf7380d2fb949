#include "apps/player/MainMenus.h"

#include "apps/player/ListenMenu.h"
#include "apps/player/ModesMenu.h"
#include "apps/player/Player.h"
#include "apps/player/PlayerActions.h"
#include "apps/player/ScriptShow.h"
#include "apps/player/display/DisplayArea.h"

#include <QFileInfo>
#include <QMenuBar>

namespace pxvis::player {

void MainMenus::AddTo(QMenuBar& bar) const
{
    AddFile(*bar.addMenu(PlayerActions::tr("&File")));
    AddPlayback(*bar.addMenu(PlayerActions::tr("&Playback")));
    QMenu* view = bar.addMenu(PlayerActions::tr("&View"));
    view->addActions({ actions.fullScreen, actions.playlist, actions.statusBar, actions.levels });
    QMenu* visuals = bar.addMenu(PlayerActions::tr("Visua&ls"));
    AddVisuals(*visuals);
    AddOwnOfVisualization(*visuals);
    bar.addMenu(new ListenMenu(player, actions, &bar));
    QMenu* help = bar.addMenu(PlayerActions::tr("&Help"));
    help->addActions({ actions.shortcuts, actions.about });
}

void MainMenus::AddFile(QMenu& menu) const
{
    menu.addActions({ actions.openFiles, actions.openFolder });
    QMenu* recent = menu.addMenu(PlayerActions::tr("Open &Recent"));
    const MainMenus self = *this;
    QObject::connect(
        recent, &QMenu::aboutToShow, recent, [self, recent] { self.FillRecent(*recent); });
    menu.addSeparator();
    menu.addActions({ actions.addFiles, actions.savePlaylist });
    menu.addSeparator();
    menu.addAction(actions.settings);
    menu.addSeparator();
    menu.addAction(actions.quit);
}

void MainMenus::FillRecent(QMenu& menu) const
{
    menu.clear();
    Player* opener = &player;
    for (const QUrl& url : player.Library().Recent()) {
        const QString path = url.toLocalFile();
        const QString name = QFileInfo(path).fileName();
        QAction* action = menu.addAction(QString(name).replace('&', QStringLiteral("&&")), opener,
            [opener, url] { opener->Open({ url }); });
        action->setToolTip(ToolTipOf(path));
    }
    menu.setToolTipsVisible(true);
    const bool isEmpty = menu.isEmpty();
    menu.addSeparator();
    menu.addAction(
            PlayerActions::tr("&Clear"), opener, [opener] { opener->Library().ClearRecent(); })
        ->setEnabled(!isEmpty);
}

void MainMenus::AddPlayback(QMenu& menu) const
{
    menu.addActions({ actions.play, actions.stop, actions.previousSong, actions.nextSong });
    menu.addSeparator();
    menu.addActions({ actions.seekBack, actions.seekForward });
    menu.addSeparator();
    menu.addActions({ actions.shuffle, actions.repeat });
    menu.addSeparator();
    menu.addActions({ actions.volumeUp, actions.volumeDown, actions.mute });
}

void MainMenus::AddVisuals(QMenu& menu) const
{
    menu.addMenu(new ModesMenu(area, show, &menu));
    menu.addActions({ actions.nextScript, actions.previousScript, actions.rotation });
    menu.addSeparator();
    QMenu* rate = menu.addMenu(PlayerActions::tr("R&ate This Script"));
    for (auto action = actions.rate.rbegin(); action != actions.rate.rend(); ++action)
        rate->addAction(*action);
    rate->addAction(actions.rateNever);
}

// What the visualization offers, behind what is there, as it is when the menu is opened.
void MainMenus::AddOwnOfVisualization(QMenu& menu) const
{
    QAction* line = menu.addSeparator();
    QMenu* opened = &menu;
    DisplayArea* shown = &area;
    QObject::connect(opened, &QMenu::aboutToShow, opened, [opened, line, shown] {
        const QList<QAction*> all = opened->actions();
        for (QAction* action : all.mid(all.indexOf(line) + 1)) {
            opened->removeAction(action);
            action->deleteLater();
        }
        shown->AddTo(*opened);
    });
}

void MainMenus::AddContext(QMenu& menu) const
{
    menu.addActions({ actions.play, actions.previousSong, actions.nextSong });
    menu.addSeparator();
    AddVisuals(menu);
    area.AddTo(menu);
    menu.addSeparator();
    menu.addMenu(new ListenMenu(player, actions, &menu));
    menu.addActions({ actions.playlist, actions.fullScreen, actions.settings });
}

}
