#ifndef VIDEODOWN_DRIVER_HISTORYCHECK_H
#define VIDEODOWN_DRIVER_HISTORYCHECK_H

#include <QString>

#include <optional>

/**
 * The number of tasks in a history file.
 * @return nothing when it cannot be read or is not well-formed XML
 */
std::optional<int> countTasks(const QString &path);

#endif
