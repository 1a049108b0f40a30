/** The rows as the user wants to see them. */
#ifndef VIDEODOWN_WINDOW_TASKFILTER_H
#define VIDEODOWN_WINDOW_TASKFILTER_H

#include "taskmodel.h"

#include <QSortFilterProxyModel>

/** Sorts and filters the tasks, also while they change. */
class TaskFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit TaskFilter(QObject *parent = nullptr);

    /** @param model a TaskModel, which must outlive the filter */
    void setSourceModel(QAbstractItemModel *model) override;
    void setGroup(TaskGroup group);
    /** Shows the tasks whose title, address or path has all of these words. */
    void setText(const QString &text);

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    TaskModel *m_tasks = nullptr;
    TaskGroup m_group = TaskGroup::All;
    QStringList m_words;
};

#endif
