/** What the driver writes into a task's `State`. */
#ifndef VIDEODOWN_DRIVER_TASKSTATE_H
#define VIDEODOWN_DRIVER_TASKSTATE_H

#include "engine/visibility.h"

#include <QString>

/**
 * How far a task is. Histories keep these numbers: they never change their meaning.
 *
 * Waiting and Running mean what they say only while a driver has the task. Found in a history that
 * was just loaded, they mean that the program was interrupted.
 */
enum class TaskState : int {
    None = -1,    ///< never taken on by a driver
    Waiting = 1,  ///< nothing was begun yet
    Running = 2,  ///< being parsed or downloaded, or waiting between the two
    Finished = 3, ///< its file was complete
    Failed = 4,   ///< ended without a file; the reason is not kept
    Stopped = 5,  ///< ended by the user
};

/**
 * A task's state in one English word, when no driver has the task: "interrupted", "finished",
 * "failed", "stopped" or "unknown".
 */
VIDEODOWN_PUBLIC QString stateName(TaskState state);

#endif
