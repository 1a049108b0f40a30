/** What a line of a history's journal says. Internal to the driver. */
#ifndef VIDEODOWN_DRIVER_JOURNALENTRY_H
#define VIDEODOWN_DRIVER_JOURNALENTRY_H

#include "driver/leftovers.h"

#include <QJsonObject>
#include <QString>

namespace journalentry {

/** Names of its members: the key of the task. */
inline const QString task = QStringLiteral("task");
/** The fields that changed, by the names of their elements. */
inline const QString fields = QStringLiteral("fields");
/** The upgrade that begins, as `asJson` has it, or null: it has ended. */
inline const QString upgrade = QStringLiteral("upgrade");

/** The files that are about to be moved, as `asJson` has them, or null: they are. */
inline const QString moved = QStringLiteral("moved");

/** True: the task has left the list. */
inline const QString dropped = QStringLiteral("dropped");

QJsonObject asJson(const UpgradeFiles &files);
UpgradeFiles upgradeIn(const QJsonObject &json);
QJsonObject asJson(const MovedFiles &files);
MovedFiles movedIn(const QJsonObject &json);

} // namespace journalentry

#endif
