#ifndef VIDEODOWN_DRIVER_HISTORYCHECK_H
#define VIDEODOWN_DRIVER_HISTORYCHECK_H

#include <QIODevice>

/** Whether all that can still be read of `file` is a well-formed XML document. */
bool isWellFormed(QIODevice &file);

#endif
