/** What the window knows of a task: plain values that cross from the worker's thread. */
#ifndef VIDEODOWN_WINDOW_TASKROW_H
#define VIDEODOWN_WINDOW_TASKROW_H

#include "driver/downloadtask.h"
#include "driver/taskaction.h"
#include "driver/taskstate.h"

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QString>

#include <array>
#include <bitset>
#include <limits>

constexpr std::size_t taskActionCount = std::size_t(TaskAction::Open) + 1;

/** One line of the list. */
struct TaskRow
{
    QString key;
    QString title; ///< empty until the site has answered
    QString address;
    QString path;      ///< of the finished file, or where it will be
    QString thumbnail; ///< path; the file may be missing
    QDateTime added;
    TaskState state = TaskState::None;
    TaskActivity activity = TaskActivity::None;
    bool isConverting = false;
    FailureReason failure;     ///< of a task that failed in this session
    DownloadProgress progress; ///< bytes; of a task at rest, what its record says
    int percent = 0;           ///< 0 to 100

    bool isAtWork() const { return activity != TaskActivity::None || isConverting; }
    /** Whether bytes arrive now. */
    bool isMoving() const
    {
        return activity == TaskActivity::Downloading && progress.bytesPerSecond > 0;
    }
    /** `endless` when nobody can say. */
    qint64 secondsLeft() const
    {
        const qint64 left = progress.total - progress.received;
        return isMoving() && left >= 0 ? left / progress.bytesPerSecond : endless;
    }
    static constexpr qint64 endless = std::numeric_limits<qint64>::max();
};

/** Everything about one task, for the details pane. */
struct TaskDetails
{
    QString key;
    QString title;
    QList<QPair<QString, QString>> fields; ///< name and value, as the history has them
    QList<OfferedFormat> formats;          ///< what the site offered
    QStringList files;                     ///< those that exist
    FailureReason failure;
    QString conversion; ///< what a conversion would make; empty for none
};

/** What can be done with some tasks now. */
struct Abilities
{
    QStringList keys;                               ///< of the tasks
    std::bitset<taskActionCount> possible;          ///< by TaskAction: with one of them at least
    std::array<QString, taskActionCount> obstacles; ///< why one of them does not allow it

    bool can(TaskAction action) const { return possible.test(std::size_t(action)); }
};

Q_DECLARE_METATYPE(TaskRow)
Q_DECLARE_METATYPE(TaskDetails)
Q_DECLARE_METATYPE(Abilities)

#endif
