/** Completion of videodown's commands, options and tasks in three shells. */
#ifndef VIDEODOWN_TEXTS_COMPLETION_H
#define VIDEODOWN_TEXTS_COMPLETION_H

#include <QByteArray>

namespace completion {

QByteArray forBash();
QByteArray forZsh();
QByteArray forFish();

} // namespace completion

#endif
