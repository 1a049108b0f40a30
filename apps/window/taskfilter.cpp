#include "taskfilter.h"

TaskFilter::TaskFilter(QObject *parent) : QSortFilterProxyModel(parent)
{
    setDynamicSortFilter(true);
}

void TaskFilter::setSourceModel(QAbstractItemModel *model)
{
    m_tasks = qobject_cast<TaskModel *>(model);
    QSortFilterProxyModel::setSourceModel(model);
}

void TaskFilter::setGroup(TaskGroup group)
{
    m_group = group;
    invalidateFilter();
}

void TaskFilter::setText(const QString &text)
{
    m_words = text.toLower().split(u' ', Qt::SkipEmptyParts);
    invalidateFilter();
}

bool TaskFilter::filterAcceptsRow(int row, const QModelIndex & /*parent*/) const
{
    return m_tasks->matches(row, m_group, m_words);
}

// Equal values keep a fixed order, so that rows do not jump while they change.
bool TaskFilter::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    if (m_tasks->isLess(left.row(), right.row(), left.column()))
        return true;
    return left.row() < right.row() && !m_tasks->isLess(right.row(), left.row(), left.column());
}
