/** Texts measured in terminal columns. */
#ifndef VIDEODOWN_CLI_TERMINALTEXT_H
#define VIDEODOWN_CLI_TERMINALTEXT_H

#include "driver/downloadtask.h"

#include <QString>

namespace terminaltext {

/** Columns that the text takes; East Asian characters and most emoji take two. */
int columns(const QString &text);

/** The text cut to at most `width` columns, with an ellipsis where it was cut. */
QString cut(const QString &text, int width);

/** The same, filled up with spaces to exactly `width` columns. */
QString fitted(const QString &text, int width);

/** "12.3 MiB" */
QString size(qint64 bytes);

/** "1:02:03"; empty for a time that nobody would wait for. */
QString duration(qint64 seconds);

/** A running video on one line of at most `width` columns. `label` names it. */
QString progressLine(const QString &label, const DownloadProgress &progress, int width);

} // namespace terminaltext

#endif
