/** Which of a history's tasks are begun again, and how. */
#ifndef VIDEODOWN_DRIVER_TASKREQUESTS_H
#define VIDEODOWN_DRIVER_TASKREQUESTS_H

#include "down/cdown.h"
#include "driver/downloadtask.h"
#include "engine/visibility.h"

#include <QList>
#include <QStringList>

#include <optional>

/** All of these take the controller lock. Tasks that a driver has are not to be asked for. */
namespace VIDEODOWN_PUBLIC taskrequests {

/** The tasks that were interrupted, in the order of the history. */
QList<DownloadRequest> interrupted(CDown &controller);

/** The tasks that were interrupted or stopped, in the order of the history. */
QList<DownloadRequest> toResume(CDown &controller);

/** The tasks that failed or were stopped. */
QList<DownloadRequest> toRetry(CDown &controller);

/** These tasks; those that are finished, or not in the history, are left out. */
QList<DownloadRequest> toRetry(CDown &controller, const QStringList &keys);

/** A larger picture for a finished task; nothing when it cannot have one. */
std::optional<DownloadRequest> toUpgrade(CDown &controller, const QString &key,
                                         const Profile_Desc &profile);

} // namespace taskrequests

#endif
