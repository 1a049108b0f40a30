/** Which files a video may take the place of. */
#ifndef VIDEODOWN_DRIVER_OVERWRITING_H
#define VIDEODOWN_DRIVER_OVERWRITING_H

#include "down/cdown.h"
#include "driver/taskrecord.h"
#include "engine/visibility.h"

#include <QString>

#include <optional>

namespace overwriting {

/**
 * Why the video of a task may not have the name `path` and take the place of what is there, for
 * people; nothing when it may. A name that another task awaits is none to have, even if nothing is
 * there yet. Takes the controller lock.
 * @param key of the task
 * @param unfinished which files the engine leaves of an unfinished download; may be empty
 *
 * Public for the command's dry run.
 */
VIDEODOWN_PUBLIC std::optional<QString> obstacle(CDown &controller, const QString &key,
                                                 const QString &path,
                                                 const UnfinishedFiles &unfinished);

} // namespace overwriting

#endif
