#include "apps/player/StatusLine.h"

#include "apps/player/LevelMeter.h"
#include "apps/player/Player.h"
#include "apps/player/TextLabel.h"

#include <QLabel>

namespace pxvis::player {

namespace {

constexpr int meterInterval = 50; // ms
constexpr int silenceInterval = 250; // ms
constexpr int messageTime = 8000; // ms

}

StatusLine::StatusLine(Player& player, QWidget* parent)
    : QStatusBar(parent)
    , m_player(player)
    , m_notice(new TextLabel)
    , m_meter(new LevelMeter)
{
    setSizeGripEnabled(false);
    QPalette warning = m_notice->palette();
    warning.setColor(QPalette::WindowText, QColor(0xFF, 0xB4, 0x54));
    m_notice->setPalette(warning);
    m_notice->setContentsMargins(8, 0, 8, 0);
    m_meter->hide();
    addWidget(m_notice, 1); // a message has its place for as long as it is shown
    addPermanentWidget(m_meter);
    // The bar itself hides it only where it is on the screen already.
    connect(this, &QStatusBar::messageChanged, this,
        [this](const QString& message) { m_notice->setVisible(message.isEmpty()); });
    connect(&m_timer, &QTimer::timeout, this, [this] {
        const bool hasBeat = m_player.Host().TakeBeat();
        m_meter->Show(m_isActive ? m_player.Host().Level() : 0, m_isActive && hasBeat);
        m_timer.setInterval(m_meter->IsDark() ? silenceInterval : meterInterval);
        UpdateTimer();
    });
}

void StatusLine::Say(const QString& text)
{
    showMessage(text, messageTime);
}

void StatusLine::SetNotice(Notice about, const QString& text)
{
    m_notices.at(static_cast<size_t>(about)) = text;
    QStringList texts(m_notices.begin(), m_notices.end());
    texts.removeAll(QString());
    m_notice->SetText(texts.join(QStringLiteral(" · ")));
}

void StatusLine::SetLevelsShown(bool shown)
{
    m_meter->setVisible(shown);
    UpdateTimer();
}

void StatusLine::SetActive(bool active)
{
    m_isActive = active;
    UpdateTimer();
}

// It goes on after the sound until the meter is dark.
void StatusLine::UpdateTimer()
{
    const bool isNeeded
        = m_meter->isVisibleTo(this) && isVisible() && (m_isActive || !m_meter->IsDark());
    if (!isNeeded)
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start(meterInterval);
}

}
