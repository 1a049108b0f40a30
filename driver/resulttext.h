/** What happened to a task, in English. */
#ifndef VIDEODOWN_DRIVER_RESULTTEXT_H
#define VIDEODOWN_DRIVER_RESULTTEXT_H

#include "driver/downloadtask.h"
#include "engine/visibility.h"

#include <QString>

namespace VIDEODOWN_PUBLIC resulttext {

/** Names a task to a person: its title and its address, cut to a sensible length. */
QString nameOf(const DownloadResult &result);

/**
 * What a person should know of a task's end, in one line: the cause of a failure and what can be
 * done about it, that a task was stopped, or what it found instead of a new video. Empty for a
 * plain download.
 */
QString summaryOf(const DownloadResult &result);

} // namespace resulttext

#endif
