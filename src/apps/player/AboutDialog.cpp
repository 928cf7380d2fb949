#include "apps/player/AboutDialog.h"

#include "apps/player/Appearance.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QIcon>
#include <QLabel>
#include <QVBoxLayout>

namespace pxvis::player {

AboutDialog::AboutDialog(QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("About pxvis"));
    auto* icon = new QLabel;
    icon->setPixmap(QGuiApplication::windowIcon().pixmap(72, 72));
    auto* name = new QLabel(QStringLiteral("pxvis"));
    QFont font = name->font();
    font.setPointSizeF(font.pointSizeF() * 2);
    name->setFont(font);
    auto* version = new QLabel(tr("Version %1").arg(QCoreApplication::applicationVersion()));
    QPalette dimmed = version->palette();
    dimmed.setColor(QPalette::WindowText, Appearance::Dimmed());
    version->setPalette(dimmed);
    auto* text = new QLabel(
        tr("Music made visible: plays songs, or listens to what the computer plays, and draws it "
           "by scripts that anyone can write."));
    text->setWordWrap(true);
    auto* licence = new QLabel(tr("Free software: the library under the LGPL, version 2.1 or "
                                  "later, the scripts in the public domain (CC0)."));
    licence->setWordWrap(true);
    licence->setPalette(dimmed);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* column = new QVBoxLayout;
    column->addWidget(name);
    column->addWidget(version);
    column->addSpacing(8);
    column->addWidget(text);
    column->addWidget(licence);
    column->addSpacing(10);
    column->addWidget(buttons);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(20, 20, 20, 14);
    row->setSpacing(18);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addLayout(column, 1);
    setMinimumWidth(420);
}

}
