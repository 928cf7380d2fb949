#include "apps/player/collection/Playlist.h"

#include <QBrush>
#include <QDataStream>
#include <QFont>
#include <QGuiApplication>
#include <QIODevice>
#include <QMimeData>
#include <QPalette>
#include <QUuid>

#include <algorithm>
#include <numeric>

namespace pxvis::player {

namespace {

const QString rowsMimeType = QStringLiteral("application/x-pxvis-playlist-rows");

}

Playlist::Playlist()
    : m_dragMark(QUuid::createUuid().toByteArray())
{
}

const Song& Playlist::At(int row) const
{
    return m_entries.at(row).song;
}

qint64 Playlist::NumberAt(int row) const
{
    return m_entries.at(row).number;
}

int Playlist::Count() const
{
    return static_cast<int>(m_entries.size());
}

int Playlist::Current() const
{
    return m_current;
}

void Playlist::SetCurrent(int row)
{
    if (row < -1 || row >= Count() || row == m_current)
        return;
    if (m_isShuffled && row >= 0)
        m_shuffle.Take(row, m_current);
    MakeCurrent(row);
    emit OrderChanged();
}

void Playlist::MakeCurrent(int row)
{
    const int before = std::exchange(m_current, row);
    for (const int changed : { before, row })
        ShowRow(changed, { Qt::FontRole, Qt::AccessibleTextRole });
    emit CurrentChanged();
}

void Playlist::ShowRow(int row, const QList<int>& roles)
{
    if (row >= 0 && row < Count())
        emit dataChanged(index(row, 0), index(row, ColumnCount - 1), roles);
}

int Playlist::Insert(const QList<Song>& songs, int row)
{
    if (row < 0 || row > Count())
        row = Count();
    const int count = static_cast<int>(std::min<qsizetype>(songs.size(), mostSongs - Count()));
    if (count == 0)
        return 0;
    beginInsertRows({}, row, row + count - 1);
    m_indexed = std::min(m_indexed, row);
    m_entries.insert(row, count, {});
    for (int i = 0; i < count; ++i)
        m_entries[row + i] = { songs[i], ++m_lastNumber, {} };
    if (m_current >= row)
        m_current += count;
    if (m_isShuffled)
        m_shuffle.Insert(row, count);
    endInsertRows();
    emit OrderChanged();
    return count;
}

// Sorted, each once, without those that there aren't.
QList<int> Playlist::ValidRows(QList<int> rows) const
{
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    rows.removeIf([this](int row) { return row < 0 || row >= Count(); });
    return rows;
}

// Those that go are brought to the end of the list first: views forget a thousand single rows one
// by one, but one stretch at once.
void Playlist::Remove(QList<int> rows)
{
    rows = ValidRows(std::move(rows));
    if (rows.isEmpty())
        return;
    QList<int> order;
    order.reserve(Count());
    auto gone = rows.cbegin();
    for (int row = 0; row < Count(); ++row) {
        if (gone != rows.cend() && *gone == row)
            ++gone;
        else
            order.append(row);
    }
    const int left = static_cast<int>(order.size());
    order += rows;
    const bool losesCurrent = std::binary_search(rows.cbegin(), rows.cend(), m_current);
    int successor = -1;
    if (losesCurrent) {
        const auto end = order.cbegin() + left;
        const auto behind = std::upper_bound(order.cbegin(), end, m_current);
        if (behind != end)
            successor = static_cast<int>(behind - order.cbegin());
        else if (left > 0 && m_repeat == RepeatMode::All)
            successor = 0;
        m_current = -1;
    }
    if (rows.first() != left)
        Rearrange(order);
    CutTail(left);
    if (losesCurrent) {
        if (m_isShuffled)
            successor = m_shuffle.Next(-1, m_repeat == RepeatMode::All);
        if (m_isShuffled && successor >= 0)
            m_shuffle.Take(successor, -1);
        MakeCurrent(successor);
    }
    emit OrderChanged();
}

// What was row order[i] becomes row i.
void Playlist::Rearrange(const QList<int>& order)
{
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    QList<int> newRows(Count());
    QList<Entry> entries;
    entries.reserve(Count());
    for (int row = 0; row < Count(); ++row) {
        newRows[order[row]] = row;
        entries.append(std::move(m_entries[order[row]]));
    }
    m_entries.swap(entries);
    m_indexed = 0;
    if (m_current >= 0)
        m_current = newRows[m_current];
    if (m_isShuffled)
        m_shuffle.Renumber(newRows);

    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& old : before)
        after.append(index(newRows[old.row()], old.column()));
    changePersistentIndexList(before, after);
    emit layoutChanged({}, VerticalSortHint);
}

void Playlist::CutTail(int count)
{
    beginRemoveRows({}, count, Count() - 1);
    if (m_isShuffled) {
        QList<int> newRows(Count(), -1);
        std::iota(newRows.begin(), newRows.begin() + count, 0);
        m_shuffle.Renumber(newRows);
    }
    m_entries.resize(count);
    m_indexed = 0;
    endRemoveRows();
}

void Playlist::Move(QList<int> rows, int before)
{
    rows = ValidRows(std::move(rows));
    before = before < 0 ? Count() : std::min(before, Count());
    QList<int> order;
    order.reserve(Count());
    auto moved = rows.cbegin();
    for (int row = 0; row <= Count(); ++row) {
        if (row == before)
            order += rows;
        if (moved != rows.cend() && *moved == row)
            ++moved;
        else if (row < Count())
            order.append(row);
    }
    if (std::is_sorted(order.cbegin(), order.cend()))
        return;
    Rearrange(order);
    emit OrderChanged();
}

void Playlist::MoveToEnd(const QList<int>& rows)
{
    QList<bool> moves(Count(), false);
    for (const int row : rows)
        moves[row] = true;
    QList<int> order;
    order.reserve(Count());
    for (int row = 0; row < Count(); ++row) {
        if (!moves[row])
            order.append(row);
    }
    order += rows;
    if (std::is_sorted(order.cbegin(), order.cend()))
        return;
    Rearrange(order);
    emit OrderChanged();
}

void Playlist::Clear()
{
    if (m_entries.isEmpty())
        return;
    beginResetModel();
    m_entries.clear();
    m_rowsByUrl.clear();
    m_indexed = 0;
    const int before = std::exchange(m_current, -1);
    m_shuffle.Start(0, -1);
    endResetModel();
    if (before >= 0)
        emit CurrentChanged();
    emit OrderChanged();
}

// Only what was added at the end is cheap to index; after all other changes the index is made anew
// by the first Update.
void Playlist::IndexByUrl()
{
    if (m_indexed < m_rowsByUrl.size()) {
        m_rowsByUrl.clear();
        m_indexed = 0;
    }
    for (; m_indexed < Count(); ++m_indexed)
        m_rowsByUrl.insert(At(m_indexed).url, m_indexed);
}

QList<int> Playlist::RowsOf(const QUrl& song)
{
    IndexByUrl();
    return m_rowsByUrl.values(song);
}

void Playlist::Update(const Song& song)
{
    for (const int row : RowsOf(song.url)) {
        if (std::exchange(m_entries[row].song, song) != song)
            ShowRow(row);
    }
}

void Playlist::SetFault(const QUrl& song, const QString& fault)
{
    for (const int row : RowsOf(song)) {
        if (std::exchange(m_entries[row].fault, fault) != fault)
            ShowRow(row);
    }
}

bool Playlist::IsPlayable(int row) const
{
    return !At(row).isMissing && m_entries[row].fault.isEmpty();
}

RepeatMode Playlist::Repeat() const
{
    return m_repeat;
}

void Playlist::SetRepeat(RepeatMode mode)
{
    if (mode == m_repeat)
        return;
    m_repeat = mode;
    emit ModesChanged();
    emit OrderChanged();
}

bool Playlist::IsShuffled() const
{
    return m_isShuffled;
}

void Playlist::SetShuffled(bool shuffled)
{
    if (shuffled == m_isShuffled)
        return;
    m_isShuffled = shuffled;
    m_shuffle.Start(shuffled ? Count() : 0, m_current);
    emit ModesChanged();
    emit OrderChanged();
}

int Playlist::Next(bool byUser) const
{
    if (!byUser && m_repeat == RepeatMode::One && m_current >= 0)
        return m_current;
    const bool wraps = m_repeat == RepeatMode::All;
    if (m_isShuffled)
        return m_shuffle.Next(m_current, wraps);
    if (m_current + 1 < Count())
        return m_current + 1;
    return wraps && Count() > 0 ? 0 : -1;
}

int Playlist::First() const
{
    if (m_isShuffled)
        return m_shuffle.Next(m_current, true);
    return Count() > 0 ? 0 : -1;
}

int Playlist::Previous() const
{
    if (m_isShuffled)
        return m_shuffle.Previous(m_current);
    if (m_current > 0)
        return m_current - 1;
    return m_current == 0 && m_repeat == RepeatMode::All ? Count() - 1 : -1;
}

int Playlist::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Count();
}

int Playlist::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int { ColumnCount };
}

QString Playlist::TextOf(const Song& song, int column) const
{
    switch (column) {
    case ColumnTitle:
        return TitleOf(song);
    case ColumnArtist:
        return song.artist;
    case ColumnAlbum:
        return song.album;
    default:
        return DurationText(song.duration);
    }
}

QString Playlist::SpokenText(int row) const
{
    const Song& song = At(row);
    QStringList parts { TitleOf(song) };
    if (row == m_current)
        parts.prepend(tr("Current song"));
    for (const QString& part : { song.artist, song.album, DurationText(song.duration) }) {
        if (!part.isEmpty())
            parts.append(part);
    }
    if (song.isMissing)
        parts.append(tr("the file is missing"));
    else if (!IsPlayable(row))
        parts.append(tr("can't be played"));
    return parts.join(QStringLiteral(", "));
}

QVariant Playlist::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Song& song = At(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return TextOf(song, index.column());
    case Qt::FontRole:
        if (index.row() == m_current) {
            QFont font;
            font.setBold(true);
            return font;
        }
        return {};
    case Qt::ForegroundRole:
        if (!IsPlayable(index.row()))
            return QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
        return {};
    case Qt::ToolTipRole:
        if (song.isMissing)
            return ToolTipOf(tr("There is no file %1").arg(LineOf(song.url.toLocalFile())));
        if (const QString& fault = m_entries[index.row()].fault; !fault.isEmpty())
            return ToolTipOf(tr("%1 can't be played: %2").arg(TitleOf(song), LineOf(fault)));
        return ToolTipOf(TextOf(song, index.column()));
    case Qt::AccessibleTextRole:
        return index.column() == ColumnTitle ? SpokenText(index.row())
                                             : TextOf(song, index.column());
    case Qt::TextAlignmentRole:
        if (index.column() == ColumnDuration)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    default:
        return {};
    }
}

QVariant Playlist::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole && section == ColumnDuration)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case ColumnTitle:
        return tr("Title");
    case ColumnArtist:
        return tr("Artist");
    case ColumnAlbum:
        return tr("Album");
    case ColumnDuration:
        return tr("Length");
    default:
        return {};
    }
}

Qt::ItemFlags Playlist::flags(const QModelIndex& index) const
{
    // Songs are dropped between rows, which belong to the list as a whole.
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled
        | Qt::ItemNeverHasChildren;
}

// Never to be moved: whoever offers files to be moved deletes them once they were taken.
Qt::DropActions Playlist::supportedDropActions() const
{
    return Qt::CopyAction | Qt::LinkAction;
}

QStringList Playlist::mimeTypes() const
{
    return { rowsMimeType, QStringLiteral("text/uri-list") };
}

QMimeData* Playlist::mimeData(const QModelIndexList& indexes) const
{
    QList<int> rows;
    for (const QModelIndex& index : indexes)
        rows.append(index.row());
    rows = ValidRows(std::move(rows));
    if (rows.isEmpty())
        return nullptr;
    QList<qint64> numbers;
    QList<QUrl> urls;
    for (const int row : rows) {
        numbers.append(m_entries[row].number);
        urls.append(At(row).url);
    }
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << m_dragMark << numbers;
    auto* mime = new QMimeData;
    mime->setData(rowsMimeType, bytes);
    mime->setUrls(urls);
    return mime;
}

// Where they are now: songs may have come or gone while they were dragged. Empty for rows of
// another list.
QList<int> Playlist::DraggedRows(const QMimeData& mime) const
{
    QByteArray mark;
    QList<qint64> numbers;
    QDataStream stream(mime.data(rowsMimeType));
    stream >> mark;
    if (mark != m_dragMark)
        return {};
    stream >> numbers;
    std::sort(numbers.begin(), numbers.end());
    QList<int> rows;
    for (int row = 0; row < Count(); ++row) {
        if (std::binary_search(numbers.cbegin(), numbers.cend(), m_entries[row].number))
            rows.append(row);
    }
    return rows;
}

bool Playlist::dropMimeData(
    const QMimeData* mime, Qt::DropAction action, int row, int, const QModelIndex& parent)
{
    if (!mime || !(supportedDropActions() & action))
        return false;
    if (row < 0 && parent.isValid())
        row = parent.row();
    if (const QList<int> rows = DraggedRows(*mime); !rows.isEmpty()) {
        Move(rows, row);
        return true;
    }
    const QList<QUrl> urls = mime->urls();
    if (urls.isEmpty())
        return false;
    emit UrlsDropped(urls, row);
    return true;
}

}
