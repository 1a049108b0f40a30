/** Values of options that stand elsewhere than on the command line. */
#ifndef VIDEODOWN_CLI_CONFIGURATION_H
#define VIDEODOWN_CLI_CONFIGURATION_H

#include "arguments.h"

#include <QList>

namespace configuration {

/** An option's value, and where it stands. */
struct Setting
{
    QString option; ///< its long name, without dashes
    QString value;
    QString origin; ///< for messages
};

/**
 * What the configuration file says (videodown/config in the user's configuration folder): a line
 * `option = value` each; "#" begins a comment. Nothing when there is no such file.
 * @param options the names that may stand in it
 */
arguments::Read<QList<Setting>> fromFile(const QStringList &options);

/** What the environment says: of the option "limit-rate", the variable VIDEODOWN_LIMIT_RATE. */
QList<Setting> fromEnvironment(const QStringList &options);

/** Whether a switch is on: "yes" or "no", and what else people write for these. */
arguments::Read<bool> isOn(const QString &value);

} // namespace configuration

#endif
