/** The tasks as a table, keyed by task key. */
#ifndef VIDEODOWN_WINDOW_TASKMODEL_H
#define VIDEODOWN_WINDOW_TASKMODEL_H

#include "taskrow.h"

#include <QAbstractTableModel>
#include <QCollator>
#include <QHash>

class Thumbnails;

/** What a person would look for: the states of the filter. */
enum class TaskGroup { All, Running, Waiting, Finished, Failed, Stopped };

/** Rows keep their places; new ones come last. The proxy sorts them. */
class TaskModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Title, State, Progress, Size, Speed, TimeLeft, Added, ColumnCount };
    enum Role {
        KeyRole = Qt::UserRole, ///< QString
        PercentRole,            ///< int, 0 to 100
    };

    /** @param thumbnails must outlive the model; null: none are shown */
    explicit TaskModel(Thumbnails *thumbnails, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /** Adds rows, or changes those with the same keys. */
    void setRows(const QList<TaskRow> &rows);
    void removeTasks(const QStringList &keys);

    /** The row with this key, or null; good until the model changes. */
    const TaskRow *find(const QString &key) const;
    QModelIndex indexOf(const QString &key) const;
    int count(TaskGroup group) const;
    /** Whether the row at `left` comes before the one at `right` when sorted by the column. */
    bool isLess(int left, int right, int column) const;
    /** @param words in lower case, all of which title, address or path must have */
    bool matches(int row, TaskGroup group, const QStringList &words) const;

    static TaskGroup groupOf(const TaskRow &row);
    static QString stateText(const TaskRow &row);

private:
    // A row, and what sorting and searching would have to make of it again and again.
    struct Line
    {
        TaskRow row;
        QCollatorSortKey order; // of the title
        QString search;
        qint64 added = 0; // milliseconds
    };

    Line lineOf(const TaskRow &row) const;
    void change(int place, const TaskRow &row);
    void countPlaces(int from);
    void changeThumbnail(const QString &path);
    QString text(const TaskRow &row, int column) const;
    QString toolTip(const TaskRow &row, int column) const;

    QCollator m_collator;
    Thumbnails *m_thumbnails;
    QList<Line> m_rows;
    QHash<QString, int> m_places;       // by key
    QHash<QString, QString> m_pictures; // keys by the paths of their thumbnails
};

#endif
