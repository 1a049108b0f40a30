/** What a session converts, and what the records know of it. */
#ifndef VIDEODOWN_DRIVER_CONVERSIONS_H
#define VIDEODOWN_DRIVER_CONVERSIONS_H

#include "driver/converter.h"
#include "engine/visibility.h"

#include <QJsonObject>

#include <optional>

class CDown;

namespace VIDEODOWN_PUBLIC conversions {

/**
 * How a task's video would have to be converted to be what was wanted: "needed" and, if so,
 * "source", "target", "extension", "width" and "height".
 */
QJsonObject describe(CDown &controller, const QString &key);

/**
 * The conversion that a finished task still needs; it is recorded as running then. A conversion of
 * an earlier run, whose file is there, becomes the result's path.
 * @param wish what the user asks for now; open where it stays with what the task has
 */
std::optional<Conversion> pending(CDown &controller, DownloadResult &result,
                                  const Profile_Desc &wish);

/** Records how a conversion has ended. */
void recordResult(CDown &controller, const DownloadResult &result);

} // namespace conversions

#endif
