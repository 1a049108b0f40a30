/** What a stored task says, and which files are its own. The caller holds the controller lock. */
#ifndef VIDEODOWN_DRIVER_TASKRECORD_H
#define VIDEODOWN_DRIVER_TASKRECORD_H

#include "driver/downloadtask.h"
#include "driver/taskaction.h"
#include "driver/taskstate.h"
#include "engine/visibility.h"
#include "history/cxmlinfo.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/**
 * Tells which files an unfinished download to `path` may have left beside it: the engine's matter,
 * so the application passes the function in. Thread-safe.
 */
using UnfinishedFiles = std::function<QStringList(const QString &path)>;

namespace VIDEODOWN_PUBLIC taskrecord {

TaskState stateOf(const CXMLInfo &record);

/** Whether the task waited or ran when its program ended; of a task that no driver has. */
bool isInterrupted(const CXMLInfo &record);

/** Whether the task ended without a file, by a failure or by the user. */
bool hasFailedOrStopped(const CXMLInfo &record);

/**
 * Why something cannot be done with a task that no driver has, in English; nothing when it can.
 * What needs a driver's task (stop, pause, continue, move) never can.
 */
std::optional<QString> obstacle(const CXMLInfo &record, TaskAction action);

/** The folder that the engine writes the task's files into. */
QString downloadFolder(const CXMLInfo &record);

/** Where the file that the task is about is, or will be: its copy when it keeps its source. */
QString outputPath(const CXMLInfo &record);

/** Whether that file, and the downloaded one behind a copy that is short, need no download. */
bool isComplete(const CXMLInfo &record);

/** Whether the downloaded video is there and has the size that it had. */
bool isDownloaded(const CXMLInfo &record);

/**
 * Whether the file at `copy` is the copy of the file at `video`, or has been begun as such: what
 * there is of it is the same.
 */
bool isBegunCopy(const QString &copy, const QString &video);

/** Whether all that the task lacks is the copy of its video, which can be made in its place. */
bool lacksOnlyItsCopy(const CXMLInfo &record);

/** The request that continues the task where it is, with the same wishes. */
DownloadRequest requestFor(const CXMLInfo &record);

/** Has the record say what the request wishes for. */
void setWishes(CXMLInfo &record, const DownloadRequest &request);

/**
 * Whether what is at `path` may be replaced by the task whose video has `size` bytes: nothing, the
 * empty file that kept the name free, or a file of just this size.
 */
bool mayReplace(const QString &path, qint64 size);

/**
 * The files of the task that exist: the video, its copy or conversion, the thumbnail, and what a
 * interrupted download left. A file of another size than the task's has been put there by somebody
 * else, and is none of them.
 */
QStringList filesOf(const CXMLInfo &record, const UnfinishedFiles &unfinished);

} // namespace taskrecord

#endif
