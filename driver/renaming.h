/** Renaming a finished task's files. */
#ifndef VIDEODOWN_DRIVER_RENAMING_H
#define VIDEODOWN_DRIVER_RENAMING_H

#include "down/cdown.h"
#include "driver/taskrecord.h"
#include "engine/visibility.h"

#include <QString>

/**
 * Renames the video of a finished task that no driver has, and its copy or conversion. Characters
 * that file names do not take are left out; the extension stays. Never replaces a file, nor takes
 * the name under which another task's download is to be continued. Takes the controller lock; the
 * history is not saved.
 * @param unfinished which files the engine leaves of an unfinished download; may be empty
 * @return why that failed, in English; empty on success
 */
VIDEODOWN_PUBLIC QString renameTask(CDown &controller, const QString &key, const QString &name,
                                    const UnfinishedFiles &unfinished = {});

#endif
