#include "apps/player/ModesMenu.h"

#include "apps/player/ScriptShow.h"
#include "apps/player/display/DisplayArea.h"

#include <QHash>

namespace pxvis::player {

namespace {

constexpr QLatin1Char separator('\\'); // of folders and name

// An "&" in a name is no mark for a key.
QString Shown(QString name)
{
    return name.replace('&', QStringLiteral("&&"));
}

}

ModesMenu::ModesMenu(DisplayArea& area, ScriptShow& show, QWidget* parent)
    : QMenu(tr("&Choose a Script"), parent)
    , m_area(area)
    , m_show(show)
{
    connect(this, &QMenu::aboutToShow, this, &ModesMenu::Fill);
}

void ModesMenu::Fill()
{
    clear();
    const QString current = m_area.CurrentMode();
    QHash<QString, QMenu*> folders { { QString(), this } };
    for (const QString& mode : m_area.Modes()) {
        QString path;
        QMenu* menu = this;
        const QStringList names = mode.split(separator);
        for (const QString& folder : names.first(names.size() - 1)) {
            path += folder + separator;
            QMenu*& known = folders[path];
            if (!known)
                known = menu->addMenu(Shown(folder));
            menu = known;
        }
        QAction* action
            = menu->addAction(Shown(names.last()), this, [this, mode] { m_show.Choose(mode); });
        action->setCheckable(true);
        action->setChecked(mode == current);
        if (!m_area.IsCycle(mode))
            continue;
        action->setStatusTip(path.isEmpty()
                ? tr("All scripts in turns, whatever their ratings")
                : tr("All scripts of this folder in turns, whatever their ratings"));
        menu->addSeparator();
    }
    if (isEmpty())
        addAction(tr("There are no scripts"))->setEnabled(false);
}

}
