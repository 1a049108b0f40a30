/** Refusing what can never be downloaded before anything is asked of the controller. */
#ifndef VIDEODOWN_DRIVER_ADDRESSCHECK_H
#define VIDEODOWN_DRIVER_ADDRESSCHECK_H

#include "driver/downloadtask.h"
#include "engine/visibility.h"

#include <optional>

/** Why `address` cannot be a video page's; nothing when it can. */
VIDEODOWN_PUBLIC std::optional<FailureReason> addressProblem(const QString &address);

/**
 * Why the library cannot use `folder` in file names, whatever is in it; nothing when it can. Does
 * not look at the disk.
 */
VIDEODOWN_PUBLIC std::optional<FailureReason> folderNameProblem(const QString &folder);

#endif
