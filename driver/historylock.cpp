#include "driver/historylock.h"

#include "driver/texts.h"

#include <QDateTime>
#include <QFileInfo>
#include <QThread>

namespace {

// Between making a lock file and writing it lie microseconds.
constexpr qint64 writingMilliseconds = 2000;
constexpr unsigned long pauseMilliseconds = 50;

} // namespace

HistoryLock::HistoryLock(const QString &historyPath)
    : m_history(historyPath), m_lock(historyPath + QLatin1String(".lock"))
{
    m_lock.setStaleLockTime(0); // else a living program's lock would go stale
}

QString HistoryLock::take()
{
    while (!m_lock.tryLock(0)) {
        const QString program = holder();
        if (!program.isEmpty())
            return Texts::tr("%1 is in use by %2").arg(m_history, program);
        if (m_lock.error() != QLockFile::LockFailedError)
            return Texts::tr("%1 cannot be locked: its folder cannot be written").arg(m_history);
        const QFileInfo file(m_lock.fileName());
        if (file.exists() && !file.isFile())
            return Texts::tr("%1 cannot be locked: \"%2\" is in the way")
                .arg(m_history, file.filePath());
        const qint64 age = qAbs(file.lastModified().msecsTo(QDateTime::currentDateTime()));
        if (age < writingMilliseconds)
            QThread::msleep(pauseMilliseconds);
        else if (file.exists() && !m_lock.removeStaleLockFile())
            return Texts::tr("%1 cannot be locked: \"%2\" cannot be read or removed")
                .arg(m_history, file.filePath());
    }
    return {};
}

QString HistoryLock::holder()
{
    qint64 process = 0;
    QString host;
    QString program;
    if (m_lock.error() != QLockFile::LockFailedError ||
        !m_lock.getLockInfo(&process, &host, &program))
        return {};
    return QStringLiteral("%1 (process %2 on %3)").arg(program).arg(process).arg(host);
}
