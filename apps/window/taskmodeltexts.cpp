// What the cells of the list say.
#include "taskmodel.h"

#include <QLocale>

namespace {

QString durationText(qint64 seconds)
{
    const qint64 hours = seconds / 3600;
    const QString minutes = QStringLiteral("%1:%2")
                                .arg(seconds / 60 % 60, hours > 0 ? 2 : 1, 10, QChar(u'0'))
                                .arg(seconds % 60, 2, 10, QChar(u'0'));
    return hours > 0 ? QStringLiteral("%1:%2").arg(hours).arg(minutes) : minutes;
}

} // namespace

QVariant TaskModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Title:
        return tr("Title");
    case State:
        return tr("State");
    case Progress:
        return tr("Progress");
    case Size:
        return tr("Size");
    case Speed:
        return tr("Speed");
    case TimeLeft:
        return tr("Time left");
    case Added:
        return tr("Added");
    default:
        return {};
    }
}

QString TaskModel::text(const TaskRow &row, int column) const
{
    const QLocale locale;
    switch (column) {
    case Title:
        return row.title.isEmpty() ? row.address : row.title;
    case State:
        return stateText(row);
    case Progress:
        return tr("%1 %").arg(row.percent);
    case Size:
        return row.progress.total > 0 ? locale.formattedDataSize(row.progress.total) : QString();
    case Speed:
        return row.isMoving()
                   ? tr("%1/s").arg(locale.formattedDataSize(row.progress.bytesPerSecond))
                   : QString();
    case TimeLeft:
        return row.secondsLeft() == TaskRow::endless ? QString() : durationText(row.secondsLeft());
    case Added:
        return locale.toString(row.added, QLocale::ShortFormat);
    default:
        return {};
    }
}

QString TaskModel::toolTip(const TaskRow &row, int column) const
{
    if (column == Title)
        return row.path.isEmpty() ? row.address : row.path;
    if (column == State && groupOf(row) == TaskGroup::Failed && !row.failure.cause.isEmpty())
        return QString(stateText(row) + u'\n' + row.failure.advice).trimmed();
    return {};
}

TaskGroup TaskModel::groupOf(const TaskRow &row)
{
    if (row.activity == TaskActivity::Waiting)
        return TaskGroup::Waiting;
    if (row.isAtWork())
        return TaskGroup::Running;
    switch (row.state) {
    case TaskState::Finished:
        return TaskGroup::Finished;
    case TaskState::Failed:
        return TaskGroup::Failed;
    default:
        return TaskGroup::Stopped;
    }
}

QString TaskModel::stateText(const TaskRow &row)
{
    if (row.isConverting)
        return tr("Converting");
    switch (row.activity) {
    case TaskActivity::Waiting:
        return tr("Waiting");
    case TaskActivity::Parsing:
        return tr("Asking the site");
    case TaskActivity::Downloading:
        return tr("Downloading");
    case TaskActivity::Paused:
        return tr("Paused");
    case TaskActivity::Copying:
        return tr("Copying");
    case TaskActivity::Stopping:
        return tr("Stopping");
    case TaskActivity::None:
        break;
    }
    switch (row.state) {
    case TaskState::Finished:
        return tr("Finished");
    case TaskState::Failed:
        return row.failure.cause.isEmpty() ? tr("Failed") : tr("Failed: %1").arg(row.failure.cause);
    case TaskState::Stopped:
        return tr("Stopped");
    case TaskState::Waiting:
    case TaskState::Running:
        return tr("Interrupted");
    case TaskState::None:
        break;
    }
    return tr("Unknown");
}
