#include "apps/player/TransportBar.h"

#include "apps/player/Appearance.h"
#include "apps/player/JumpSlider.h"
#include "apps/player/Player.h"
#include "apps/player/PlayerActions.h"
#include "apps/player/RatingStars.h"
#include "apps/player/ScriptShow.h"
#include "apps/player/TextLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

#include <algorithm>
#include <climits>
#include <cmath>

namespace pxvis::player {

namespace {

constexpr int fullVolume = 100;
constexpr int widthForRating = 720;

void Dim(QWidget& widget)
{
    QPalette palette = widget.palette();
    palette.setColor(QPalette::WindowText, Appearance::Dimmed());
    widget.setPalette(palette);
}

QFont Bold(QFont font)
{
    font.setWeight(QFont::DemiBold);
    return font;
}

QFont Small(QFont font)
{
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * 0.9);
    return font;
}

}

QString TimeText(qint64 milliseconds)
{
    if (milliseconds < 0)
        return QStringLiteral("–:––");
    const qint64 seconds = milliseconds / 1000;
    const auto padded
        = [](qint64 number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    const QString minutes = QString::number(seconds / 60 % 60);
    if (seconds < 3600)
        return minutes + ':' + padded(seconds % 60);
    return QString::number(seconds / 3600) + ':' + padded(seconds / 60 % 60) + ':'
        + padded(seconds % 60);
}

TransportBar::TransportBar(
    Player& player, ScriptShow& show, PlayerActions& actions, QWidget* parent)
    : QWidget(parent)
    , m_player(player)
    , m_show(show)
    , m_actions(actions)
{
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(12, 6, 12, 8);
    rows->setSpacing(2);
    rows->addLayout(MakePlace());
    auto* row = new QHBoxLayout;
    row->setSpacing(10);
    row->addLayout(MakeButtons());
    row->addLayout(MakeSong(), 3);
    row->addLayout(MakeScript(), 2);
    row->addLayout(MakeVolume());
    rows->addLayout(row);

    connect(&player, &Player::PositionChanged, this, &TransportBar::UpdatePlace);
    connect(&player, &Player::TrackChanged, this, &TransportBar::UpdateSong);
    connect(&player, &Player::StatusChanged, this, &TransportBar::UpdateVolume);
    connect(&show, &ScriptShow::Changed, this, &TransportBar::UpdateScript);
    UpdatePlace();
    UpdateSong();
    UpdateVolume();
    UpdateScript();
}

QBoxLayout* TransportBar::MakePlace()
{
    m_place = new JumpSlider;
    m_place->setAccessibleName(tr("Position in the song"));
    m_place->setSingleStep(5000);
    m_place->setPageStep(30'000);
    m_elapsed = new QLabel;
    m_length = new QLabel;
    for (QLabel* label : { m_elapsed, m_length }) {
        label->setFont(Small(label->font()));
        label->setTextFormat(Qt::PlainText);
        Dim(*label);
        const int width = label->fontMetrics().horizontalAdvance(QStringLiteral("88:88"));
        label->setMinimumWidth(width);
    }
    m_elapsed->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_elapsed->setAccessibleName(tr("Time"));
    m_length->setAccessibleName(tr("Length"));

    // While the handle is held the song goes on; it is where the handle is let go that counts.
    connect(m_place, &JumpSlider::sliderReleased, this,
        [this] { m_player.SeekTo(qint64 { m_place->sliderPosition() } * 1000); });
    connect(m_place, &JumpSlider::sliderMoved, this,
        [this](int position) { m_elapsed->setText(TimeText(position)); });
    connect(m_place, &JumpSlider::actionTriggered, this, [this](int action) {
        if (action != QAbstractSlider::SliderMove)
            m_player.SeekTo(qint64 { m_place->sliderPosition() } * 1000);
    });

    auto* row = new QHBoxLayout;
    row->addWidget(m_elapsed);
    row->addWidget(m_place, 1);
    row->addWidget(m_length);
    return row;
}

QBoxLayout* TransportBar::MakeButtons()
{
    auto* row = new QHBoxLayout;
    row->setSpacing(2);
    row->addWidget(MakeButton(m_actions.previousSong));
    row->addWidget(MakeButton(m_actions.play, 30));
    row->addWidget(MakeButton(m_actions.nextSong));
    row->addSpacing(6);
    row->addWidget(MakeButton(m_actions.shuffle, 18));
    row->addWidget(MakeButton(m_actions.repeat, 18));
    return row;
}

QBoxLayout* TransportBar::MakeSong()
{
    m_title = new TextLabel;
    m_title->setFont(Bold(m_title->font()));
    m_artist = new TextLabel;
    m_artist->setFont(Small(m_artist->font()));
    Dim(*m_artist);
    auto* column = new QVBoxLayout;
    column->setSpacing(1);
    column->addStretch();
    column->addWidget(m_title);
    column->addWidget(m_artist);
    column->addStretch();
    return column;
}

QBoxLayout* TransportBar::MakeScript()
{
    m_script = new TextLabel;
    m_script->SetAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_rating = new RatingStars;
    connect(m_rating, &RatingStars::Rated, &m_show, &ScriptShow::Rate);
    auto* stars = new QHBoxLayout;
    m_folder = new TextLabel;
    m_folder->setFont(Small(m_folder->font()));
    m_folder->SetAlignment(Qt::AlignRight | Qt::AlignVCenter);
    Dim(*m_folder);
    stars->setSpacing(8);
    stars->addWidget(m_folder, 1);
    stars->addWidget(m_rating);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addStretch();
    texts->addWidget(m_script);
    texts->addLayout(stars);
    texts->addStretch();
    auto* row = new QHBoxLayout;
    row->setSpacing(4);
    row->addLayout(texts, 1);
    row->addWidget(MakeButton(m_actions.previousScript, 18));
    row->addWidget(MakeButton(m_actions.nextScript, 18));
    return row;
}

QBoxLayout* TransportBar::MakeVolume()
{
    m_volume = new JumpSlider;
    m_volume->setAccessibleName(tr("Volume"));
    m_volume->setToolTip(tr("Volume (Up, Down)"));
    m_volume->setRange(0, fullVolume);
    m_volume->setPageStep(10);
    connect(m_volume, &JumpSlider::valueChanged, this, [this](int value) {
        m_player.SetMuted(false);
        m_player.SetVolume(value / double(fullVolume));
    });
    auto* row = new QHBoxLayout;
    row->setSpacing(2);
    row->addWidget(MakeButton(m_actions.mute));
    row->addWidget(m_volume);
    row->addSpacing(6);
    row->addWidget(MakeButton(m_actions.playlist));
    row->addWidget(MakeButton(m_actions.fullScreen));
    return row;
}

QToolButton* TransportBar::MakeButton(QAction* action, int side)
{
    auto* button = new QToolButton;
    button->setDefaultAction(action);
    button->setIconSize({ side, side });
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    button->setFocusPolicy(Qt::TabFocus);
    const auto name = [button, action] {
        QString text = action->text();
        text.remove('&').remove(QStringLiteral("…"));
        button->setAccessibleName(text);
        const QString key = action->shortcut().toString(QKeySequence::NativeText);
        button->setToolTip(key.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, key));
    };
    connect(action, &QAction::changed, button, name);
    name();
    return button;
}

// The titles need the room more.
void TransportBar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    for (QWidget* part : { static_cast<QWidget*>(m_rating), static_cast<QWidget*>(m_folder) })
        part->setVisible(width() >= widthForRating);
    m_volume->setFixedWidth(width() >= widthForRating ? 96 : 56);
}

void TransportBar::UpdatePlace()
{
    const PlayerStatus status = m_player.Status();
    const qint64 position = m_player.Position() / 1000;
    const qint64 length = status.length < 0 ? -1 : status.length / 1000;
    const bool isThere = status.trackNumber >= 0 && !m_player.IsListening();
    m_place->setEnabled(isThere && status.canSeek && length > 0);
    m_length->setText(isThere ? TimeText(length) : QString());
    if (m_place->isSliderDown())
        return;
    m_place->setRange(0, static_cast<int>(std::clamp<qint64>(length, 1, INT_MAX)));
    m_place->setValue(isThere ? static_cast<int>(std::clamp<qint64>(position, 0, INT_MAX)) : 0);
    m_elapsed->setText(isThere ? TimeText(position) : QString());
}

void TransportBar::UpdateSong()
{
    const PlayerStatus status = m_player.Status();
    if (m_player.IsListening()) {
        m_title->SetText(tr("Listening"));
        m_artist->SetText(m_player.ListeningName());
    } else {
        m_title->SetText(status.title);
        m_artist->SetText(status.artist.isEmpty() || status.album.isEmpty()
                ? status.artist + status.album
                : QStringLiteral("%1 · %2").arg(status.artist, status.album));
    }
    m_artist->setVisible(!m_artist->Text().isEmpty());
    UpdatePlace();
}

void TransportBar::UpdateVolume()
{
    const QSignalBlocker blocker(m_volume);
    if (!m_volume->isSliderDown())
        m_volume->setValue(static_cast<int>(std::lround(m_player.Status().volume * fullVolume)));
}

void TransportBar::UpdateScript()
{
    m_script->SetText(m_show.Name());
    m_folder->SetText(m_show.Folder());
    constexpr int mostOfFolder = 120; // the rest of the row is shared by stretch, not by need
    m_folder->setMinimumWidth(std::min(m_folder->sizeHint().width(), mostOfFolder));
    m_rating->setEnabled(m_show.CanRate());
    m_rating->SetRating(m_show.Rating());
}

}
