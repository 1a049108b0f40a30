#include "taskmodel.h"

#include "thumbnails.h"

#include <QFileInfo>

#include <algorithm>

TaskModel::TaskModel(Thumbnails *thumbnails, QObject *parent)
    : QAbstractTableModel(parent), m_thumbnails(thumbnails)
{
    m_collator.setNumericMode(true);
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    if (thumbnails != nullptr)
        connect(thumbnails, &Thumbnails::ready, this, &TaskModel::changeThumbnail);
}

int TaskModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int TaskModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QVariant TaskModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const TaskRow &row = m_rows.at(index.row()).row;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return text(row, index.column());
    case Qt::ToolTipRole:
        return toolTip(row, index.column());
    case Qt::DecorationRole:
        return index.column() == Title && m_thumbnails != nullptr
                   ? m_thumbnails->pixmap(row.thumbnail)
                   : QVariant();
    case Qt::TextAlignmentRole:
        return index.column() == Size || index.column() == Speed || index.column() == TimeLeft
                   ? QVariant(Qt::AlignVCenter | Qt::AlignRight)
                   : QVariant(Qt::AlignVCenter | Qt::AlignLeft);
    case KeyRole:
        return row.key;
    case PercentRole:
        return row.percent;
    default:
        return {};
    }
}

bool TaskModel::isLess(int left, int right, int column) const
{
    const Line &one = m_rows.at(left);
    const Line &other = m_rows.at(right);
    const auto speed = [](const TaskRow &row) {
        return row.isMoving() ? row.progress.bytesPerSecond : qint64(-1);
    };
    switch (column) {
    case State:
        return groupOf(one.row) < groupOf(other.row);
    case Progress:
        return one.row.percent < other.row.percent;
    case Size:
        return one.row.progress.total < other.row.progress.total;
    case Speed:
        return speed(one.row) < speed(other.row);
    case TimeLeft:
        return one.row.secondsLeft() < other.row.secondsLeft();
    case Added:
        return one.added < other.added;
    default:
        return one.order < other.order;
    }
}

bool TaskModel::matches(int row, TaskGroup group, const QStringList &words) const
{
    const Line &line = m_rows.at(row);
    return (group == TaskGroup::All || groupOf(line.row) == group) &&
           std::all_of(words.cbegin(), words.cend(),
                       [&line](const QString &word) { return line.search.contains(word); });
}

TaskModel::Line TaskModel::lineOf(const TaskRow &row) const
{
    return {row, m_collator.sortKey(text(row, Title)),
            QString(row.title + u'\n' + row.address + u'\n' + row.path).toLower(),
            row.added.toMSecsSinceEpoch()};
}

void TaskModel::change(int place, const TaskRow &row)
{
    Line &line = m_rows[place];
    const bool sameTexts = line.row.title == row.title && line.row.address == row.address &&
                           line.row.path == row.path && line.row.added == row.added;
    const bool onlyMoves = sameTexts && line.row.thumbnail == row.thumbnail &&
                           line.row.state == row.state && line.row.activity == row.activity &&
                           line.row.isConverting == row.isConverting &&
                           line.row.failure.cause == row.failure.cause;
    if (sameTexts)
        line.row = row;
    else
        line = lineOf(row);
    emit dataChanged(index(place, onlyMoves ? Progress : Title),
                     index(place, onlyMoves ? TimeLeft : ColumnCount - 1));
}

void TaskModel::setRows(const QList<TaskRow> &rows)
{
    const int known = int(m_rows.size());
    QList<TaskRow> fresh;
    for (const TaskRow &row : rows) {
        m_pictures.insert(row.thumbnail, row.key);
        const auto place = m_places.constFind(row.key);
        if (place == m_places.cend()) {
            m_places.insert(row.key, known + int(fresh.size()));
            fresh << row;
        } else if (*place >= known) { // twice in one go
            fresh[*place - known] = row;
        } else {
            change(*place, row);
        }
    }
    if (fresh.isEmpty())
        return;
    beginInsertRows({}, known, known + int(fresh.size()) - 1);
    for (const TaskRow &row : std::as_const(fresh))
        m_rows << lineOf(row);
    endInsertRows();
}

void TaskModel::removeTasks(const QStringList &keys)
{
    QList<int> places;
    for (const QString &key : keys) {
        if (const QModelIndex place = indexOf(key); place.isValid())
            places << place.row();
    }
    std::sort(places.begin(), places.end(), std::greater<>());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    // Places are counted anew after each range: many ranges are cheaper as one change of
    // everything.
    constexpr qsizetype manyRows = 100;
    const bool reset = places.size() > manyRows;
    if (reset)
        beginResetModel();
    for (const int place : std::as_const(places)) {
        if (!reset)
            beginRemoveRows({}, place, place);
        m_places.remove(m_rows.at(place).row.key);
        m_pictures.remove(m_rows.at(place).row.thumbnail);
        m_rows.removeAt(place);
        if (!reset) {
            countPlaces(place);
            endRemoveRows();
        }
    }
    if (reset) {
        countPlaces(0);
        endResetModel();
    }
}

void TaskModel::countPlaces(int from)
{
    for (int row = from; row < m_rows.size(); ++row)
        m_places[m_rows.at(row).row.key] = row;
}

void TaskModel::changeThumbnail(const QString &path)
{
    const QModelIndex place = indexOf(m_pictures.value(path));
    if (place.isValid())
        emit dataChanged(place, place, {Qt::DecorationRole});
}

const TaskRow *TaskModel::find(const QString &key) const
{
    const QModelIndex place = indexOf(key);
    return place.isValid() ? &m_rows.at(place.row()).row : nullptr;
}

QModelIndex TaskModel::indexOf(const QString &key) const
{
    return index(m_places.value(key, -1), 0);
}

int TaskModel::count(TaskGroup group) const
{
    return int(std::count_if(m_rows.cbegin(), m_rows.cend(), [group](const Line &line) {
        return group == TaskGroup::All || groupOf(line.row) == group;
    }));
}
