/** Sees to it that one program at a time uses a history. */
#ifndef VIDEODOWN_DRIVER_HISTORYLOCK_H
#define VIDEODOWN_DRIVER_HISTORYLOCK_H

#include <QLockFile>
#include <QString>

/**
 * A lock file, HISTORY.lock. It is as good as its program: when that is gone, so is the lock,
 * however it ended; while that lives, so does the lock, however old it is. A lock file that cannot
 * be read names no program; it is one that is just being made, or one whose program ended before
 * it was written, and ceases to count when it has stayed so for a moment.
 */
class HistoryLock
{
public:
    explicit HistoryLock(const QString &historyPath);

    /**
     * Takes the lock; waits at most for an unreadable one to be written.
     * @return why it cannot be had, in English; empty on success
     */
    QString take();

private:
    QString holder();

    const QString m_history;
    QLockFile m_lock;
};

#endif
