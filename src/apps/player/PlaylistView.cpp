#include "apps/player/PlaylistView.h"

#include "apps/player/Appearance.h"
#include "apps/player/Player.h"
#include "apps/player/PlayerActions.h"
#include "apps/player/TextLabel.h"
#include "apps/player/TransportBar.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QToolButton>

namespace pxvis::player {

namespace {

constexpr int widthForAlbums = 560;
constexpr int sumDelay = 200; // ms

// The current song stands out; songs that can't be played stand back.
class SongDelegate : public QStyledItemDelegate
{
public:
    SongDelegate(const Playlist& playlist, QObject* parent)
        : QStyledItemDelegate(parent)
        , m_playlist(playlist)
    {
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const int row = index.row();
        option->state &= ~QStyle::State_HasFocus; // the whole row is chosen
        if (row == m_playlist.Current()) {
            option->palette.setColor(QPalette::Text, Appearance::Accent());
            option->font.setWeight(QFont::DemiBold);
        } else if (row < m_playlist.Count() && !m_playlist.IsPlayable(row)) {
            option->palette.setColor(
                QPalette::Text, option->palette.color(QPalette::Disabled, QPalette::Text));
            option->font.setStrikeOut(m_playlist.At(row).isMissing);
        } else if (index.column() != Playlist::ColumnTitle) {
            option->palette.setColor(QPalette::Text, Appearance::Dimmed());
        }
    }

private:
    const Playlist& m_playlist;
};

}

PlaylistView::PlaylistView(Player& player, PlayerActions& actions, QWidget* parent)
    : QWidget(parent)
    , m_player(player)
    , m_table(new QTableView)
    , m_sum(new TextLabel)
{
    Playlist& playlist = player.Songs();
    m_table->setModel(&playlist);
    m_table->setItemDelegate(new SongDelegate(playlist, m_table));
    m_table->setAccessibleName(tr("Playlist"));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setDragDropMode(QAbstractItemView::DragDrop);
    m_table->setDefaultDropAction(Qt::MoveAction);
    m_table->setDragDropOverwriteMode(false);
    m_table->setDropIndicatorShown(true);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->setContextMenuPolicy(Qt::CustomContextMenu);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 12);
    QHeaderView* header = m_table->horizontalHeader();
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setSectionResizeMode(QHeaderView::Stretch);
    header->setSectionResizeMode(Playlist::ColumnDuration, QHeaderView::Fixed);
    header->resizeSection(
        Playlist::ColumnDuration, fontMetrics().horizontalAdvance(QStringLiteral("Length 88")));

    QPalette dimmed = m_sum->palette();
    dimmed.setColor(QPalette::WindowText, Appearance::Dimmed());
    m_sum->setPalette(dimmed);
    auto* add = new QToolButton;
    add->setText(tr("Add…"));
    add->setToolTip(tr("Add songs to the playlist"));
    auto* clear = new QToolButton;
    clear->setText(tr("Clear"));
    clear->setToolTip(tr("Take all songs from the list; the files stay"));
    for (QToolButton* button : { add, clear })
        button->setFocusPolicy(Qt::TabFocus);
    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(8, 3, 4, 3);
    foot->addWidget(m_sum, 1);
    foot->addWidget(add);
    foot->addWidget(clear);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_table, 1);
    column->addLayout(foot);

    auto* remove = new QAction(tr("Remove from the List"), m_table);
    remove->setShortcut(Qt::Key_Delete);
    remove->setShortcutContext(Qt::WidgetShortcut);
    m_table->addAction(remove);
    connect(remove, &QAction::triggered, this, &PlaylistView::RemoveSelected);
    connect(add, &QToolButton::clicked, actions.addFiles, &QAction::trigger);
    connect(clear, &QToolButton::clicked, this, &PlaylistView::Clear);
    connect(m_table, &QTableView::activated, this,
        [this](const QModelIndex& index) { m_player.PlayRow(index.row()); });
    connect(m_table, &QTableView::customContextMenuRequested, this, &PlaylistView::AskWhatToDo);

    const auto show = [this] { m_table->viewport()->update(); };
    connect(&playlist, &Playlist::CurrentChanged, this, show);
    m_sumTimer.setSingleShot(true);
    m_sumTimer.setInterval(sumDelay);
    connect(&m_sumTimer, &QTimer::timeout, this, &PlaylistView::UpdateSum);
    const auto change = [this] {
        if (!m_sumTimer.isActive())
            m_sumTimer.start();
    };
    for (const auto signal : { &Playlist::rowsInserted, &Playlist::rowsRemoved })
        connect(&playlist, signal, this, change);
    connect(&playlist, &Playlist::modelReset, this, change);
    connect(&playlist, &Playlist::dataChanged, this, change);
    connect(&player, &Player::SongStarted, this, [this] {
        const int row = m_player.Songs().Current();
        if (row >= 0)
            m_table->scrollTo(m_player.Songs().index(row, 0));
    });
    UpdateSum();
    UpdateColumns();
}

QSize PlaylistView::sizeHint() const
{
    return { 340, 400 };
}

QSize PlaylistView::minimumSizeHint() const
{
    return { 180, 100 };
}

void PlaylistView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    UpdateColumns();
}

void PlaylistView::UpdateColumns()
{
    m_table->setColumnHidden(Playlist::ColumnAlbum, width() < widthForAlbums);
}

void PlaylistView::UpdateSum()
{
    const Playlist& playlist = m_player.Songs();
    qint64 duration = 0;
    for (int row = 0; row < playlist.Count(); ++row)
        duration += std::max<qint64>(playlist.At(row).duration, 0);
    const QString songs
        = playlist.Count() == 1 ? tr("1 song") : tr("%1 songs").arg(playlist.Count());
    m_sum->SetText(duration > 0 ? songs + QStringLiteral(" · ") + TimeText(duration) : songs);
}

QList<int> PlaylistView::SelectedRows() const
{
    QList<int> rows;
    for (const QModelIndex& index : m_table->selectionModel()->selectedRows())
        rows.append(index.row());
    return rows;
}

void PlaylistView::RemoveSelected()
{
    m_player.Songs().Remove(SelectedRows());
}

void PlaylistView::Clear()
{
    m_player.Songs().Clear();
}

void PlaylistView::AskWhatToDo(const QPoint& point)
{
    const QModelIndex index = m_table->indexAt(point);
    QMenu menu;
    if (index.isValid()) {
        menu.addAction(tr("Play"), this, [this, index] { m_player.PlayRow(index.row()); });
        QMenu* rate = menu.addMenu(tr("Rate the Song"));
        const QUrl url = m_player.Songs().At(index.row()).url;
        const int rating = m_player.Library().Rating(url);
        for (int stars = 5; stars >= 0; --stars) {
            QAction* action
                = rate->addAction(stars > 0 ? QString(stars, QChar(0x2605)) : tr("No Rating"), this,
                    [this, url, stars] { m_player.RateSong(url, stars); });
            action->setCheckable(true);
            action->setChecked(stars == rating);
        }
        menu.addSeparator();
        menu.addAction(tr("Remove from the List"), this, &PlaylistView::RemoveSelected);
    }
    menu.addAction(tr("Clear the List"), this, &PlaylistView::Clear)
        ->setEnabled(m_player.Songs().Count() > 0);
    menu.exec(m_table->viewport()->mapToGlobal(point));
}

}
