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

QJsonObject asJson(const UpgradeFiles &files);
UpgradeFiles upgradeIn(const QJsonObject &json);

} // namespace journalentry

#endif
