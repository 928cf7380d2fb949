#include "apps/player/InvitationPage.h"

#include "apps/player/Appearance.h"
#include "apps/player/PlayerActions.h"
#include "apps/player/PlayerIcons.h"

#include <QDragEnterEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <cmath>

namespace pxvis::player {

namespace {

constexpr char buttonStyle[] = R"(
QPushButton { background: #262a31; border: 1px solid #3a414b; border-radius: 9px;
    padding: 11px 18px; text-align: left; }
QPushButton:hover { background: #2f353e; border-color: #525b68; }
QPushButton:pressed { background: #353c46; }
QPushButton:focus { border-color: #6fb1ff; }
)";

QPushButton* MakeButton(IconShape icon, const QString& text)
{
    auto* button = new QPushButton(MakeIcon(icon), "  " + text);
    button->setIconSize({ 22, 22 });
    button->setStyleSheet(QString::fromLatin1(buttonStyle));
    button->setCursor(Qt::PointingHandCursor);
    button->setAccessibleName(text);
    return button;
}

}

InvitationPage::InvitationPage(PlayerActions& actions, QWidget* parent)
    : QWidget(parent)
{
    setAcceptDrops(true);
    auto* title = new QLabel(tr("Drop songs here"));
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * 2.2);
    font.setWeight(QFont::Light);
    title->setFont(font);
    title->setAlignment(Qt::AlignCenter);
    auto* text = new QLabel(tr("or listen to what the computer plays"));
    text->setAlignment(Qt::AlignCenter);
    QPalette dimmed = text->palette();
    dimmed.setColor(QPalette::WindowText, Appearance::Dimmed());
    text->setPalette(dimmed);

    QPushButton* open = MakeButton(IconShape::Folder, tr("Open songs…"));
    QPushButton* listen = MakeButton(IconShape::Sound, tr("Listen to what the computer plays"));
    QPushButton* demo = MakeButton(IconShape::Note, tr("Play the demo song"));
    connect(open, &QPushButton::clicked, actions.openFiles, &QAction::trigger);
    connect(listen, &QPushButton::clicked, this, &InvitationPage::ListenAsked);
    connect(demo, &QPushButton::clicked, this, &InvitationPage::DemoAsked);

    auto* column = new QVBoxLayout;
    column->setSpacing(10);
    column->addWidget(title);
    column->addWidget(text);
    column->addSpacing(18);
    for (QPushButton* button : { open, listen, demo })
        column->addWidget(button);
    auto* middle = new QHBoxLayout;
    middle->addStretch();
    middle->addLayout(column);
    middle->addStretch();
    auto* rows = new QVBoxLayout(this);
    rows->addStretch(5);
    rows->addLayout(middle);
    rows->addStretch(6);
}

void InvitationPage::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void InvitationPage::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    emit Dropped(event->mimeData()->urls());
}

// A spectrum at rest, so that the place for the pictures is not just a hole.
void InvitationPage::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(0x0B, 0x0C, 0x10));
    constexpr int bars = 48;
    const double step = double(width()) / bars;
    for (int i = 0; i < bars; ++i) {
        const double x = (i + 0.5) / bars;
        const double wave = 0.5 + 0.28 * std::sin(9.1 * x) + 0.22 * std::sin(23.0 * x + 1.3);
        const double barHeight = height() * 0.34 * wave * (1.15 - 0.6 * x);
        QLinearGradient gradient(0, height() - barHeight, 0, height());
        QColor top = QColor::fromHslF(static_cast<float>(0.55 + 0.22 * x), 0.55F, 0.55F, 0.30F);
        gradient.setColorAt(0, top);
        top.setAlphaF(0.03F);
        gradient.setColorAt(1, top);
        painter.setPen(Qt::NoPen);
        painter.setBrush(gradient);
        painter.drawRoundedRect(
            QRectF(i * step + step * 0.14, height() - barHeight, step * 0.72, barHeight + 6), 4, 4);
    }
}

}
