#include "apps/player/ShortcutsDialog.h"

#include "apps/player/Appearance.h"
#include "apps/player/PlayerActions.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace pxvis::player {

namespace {

// The keys of keyboards for media are known by what is printed on them.
bool IsMediaKey(const QKeySequence& keys)
{
    const int key = keys[0].key();
    return key >= Qt::Key_MediaPlay && key <= Qt::Key_MediaTogglePlayPause;
}

QString KeysOf(const QAction& action)
{
    QStringList keys;
    for (const QKeySequence& sequence : action.shortcuts()) {
        if (!IsMediaKey(sequence))
            keys.append(sequence.toString(QKeySequence::NativeText));
    }
    return keys.join(QStringLiteral(", "));
}

}

ShortcutsDialog::ShortcutsDialog(const PlayerActions& actions, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Keyboard Shortcuts"));
    QVBoxLayout* columns[] = { new QVBoxLayout, new QVBoxLayout };
    // Groups go into the column that is the shorter one so far.
    int lengths[] = { 0, 0 };
    QGridLayout* grid = nullptr;
    QString group;
    int column = 0;
    for (const PlayerActions::Entry& entry : actions.All()) {
        const QString keys = KeysOf(*entry.action);
        if (keys.isEmpty())
            continue;
        if (entry.group != group) {
            group = entry.group;
            column = lengths[0] <= lengths[1] ? 0 : 1;
            if (lengths[column] > 0)
                columns[column]->addSpacing(12);
            columns[column]->addWidget(Appearance::MakeHeading(group));
            grid = new QGridLayout;
            grid->setHorizontalSpacing(24);
            grid->setVerticalSpacing(4);
            grid->setColumnStretch(0, 1);
            columns[column]->addLayout(grid);
            lengths[column] += 2;
        }
        QString text = entry.action->text();
        text.remove('&').remove(QStringLiteral("…"));
        auto* name = new QLabel(text);
        auto* key = new QLabel(keys);
        QPalette dimmed = key->palette();
        dimmed.setColor(QPalette::WindowText, Appearance::Dimmed());
        key->setPalette(dimmed);
        key->setAlignment(Qt::AlignRight);
        const int row = grid->rowCount();
        grid->addWidget(name, row, 0);
        grid->addWidget(key, row, 1);
        ++lengths[column];
    }
    auto* sides = new QHBoxLayout;
    sides->setSpacing(44);
    for (QVBoxLayout* side : columns) {
        side->setSpacing(2);
        side->addStretch();
        sides->addLayout(side);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(22, 18, 22, 14);
    rows->addLayout(sides);
    rows->addSpacing(10);
    rows->addWidget(buttons);
}

}
