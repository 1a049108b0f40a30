#include "driver/historykeeper.h"

#include "driver/disk.h"
#include "driver/historylock.h"
#include "driver/journal.h"
#include "driver/journalentry.h"
#include "history/historyfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <utility>

namespace {

// A link would be replaced by the rename of a save, so the file behind it is the history.
QString realPath(const QString &path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QFileInfo(path).absoluteFilePath() : canonical;
}

} // namespace

HistoryKeeper::HistoryKeeper(CDown &controller, const QString &path, UnfinishedFiles unfinished,
                             QObject *parent)
    : QObject(parent),
      m_controller(controller),
      m_path(realPath(path)),
      m_unfinished(std::move(unfinished)),
      m_lock(std::make_unique<HistoryLock>(m_path)),
      m_journal(std::make_unique<Journal>(m_path + QLatin1String(".journal")))
{
}

HistoryKeeper::~HistoryKeeper()
{
    if (m_open && m_journal->exists())
        save();
}

void HistoryKeeper::expectChanges()
{
    m_expectsChanges = true;
}

QString HistoryKeeper::open()
{
    if (!QDir().mkpath(QFileInfo(m_path).absolutePath()))
        return tr("the folder of %1 cannot be made").arg(m_path);
    QString problem = m_lock->take();
    if (problem.isEmpty())
        problem = load();
    m_open = problem.isEmpty();
    return problem;
}

QString HistoryKeeper::setAsidePath() const
{
    return m_setAside;
}

QString HistoryKeeper::setAsideJournal() const
{
    return m_setAsideJournal;
}

// Reading the journal then adds little to reading the history.
QString HistoryKeeper::save()
{
    if (!m_open)
        return tr("the history is not open");
    {
        const MutexLock lock(m_mutex);
        m_saving = true;
    }
    QString problem = writeAnew();
    const MutexLock lock(m_mutex);
    m_saving = false;
    const QList<QJsonObject> late = std::exchange(m_late, {});
    if (problem.isEmpty())
        beginJournalAnew(late);
    return problem;
}

QString HistoryKeeper::writeAnew()
{
    const QString fresh = m_path + QLatin1String(".new");
    const QByteArray content = serialized();
    QString problem = writeNew(fresh, content);
    const QByteArray digest = problem.isEmpty() ? Journal::digestOf(content) : QByteArray();
    if (problem.isEmpty() && !m_journal->announce(digest))
        problem = tr("%1.journal cannot be written; the disk may be full").arg(m_path);
    if (problem.isEmpty() && !replaceBy(fresh))
        problem = tr("%1 cannot be replaced").arg(m_path);
    if (!problem.isEmpty()) {
        QFile::remove(fresh);
        return problem;
    }
    const MutexLock lock(m_mutex);
    m_digest = digest;
    m_unstored.clear();
    return {};
}

// The next opening has to look after what is at work, though the history has
// all of its records.
void HistoryKeeper::beginJournalAnew(const QList<QJsonObject> &late)
{
    m_journal->remove();
    QList<QJsonObject> entries;
    for (const QString &key : std::as_const(m_atWork))
        entries.append({{journalentry::task, key}});
    entries += m_begun.values();
    entries += late;
    if (!entries.isEmpty())
        m_journal->append(entries, *m_digest);
}

QByteArray HistoryKeeper::serialized()
{
    const ControllerLock lock;
    return historyfile::serialize(*m_controller.m_pHistory);
}

// The disk may have taken less than it was given, or other bytes.
QString HistoryKeeper::writeNew(const QString &path, const QByteArray &content)
{
    QFile::remove(path);
    historyfile::write(path, content);
    if (!QFileInfo::exists(path))
        return tr("%1 cannot be written").arg(path);
    if (!disk::holds(path, content) || !disk::syncFile(path))
        return tr("%1 could not be written whole; the disk may be full").arg(path);
    return {};
}

bool HistoryKeeper::replaceBy(const QString &path)
{
    const QString previous = m_path + QLatin1String(".previous");
    std::error_code ignored; // without a previous version the save is no less safe
    std::filesystem::remove(disk::native(previous), ignored);
    std::filesystem::create_hard_link(disk::native(m_path), disk::native(previous), ignored);
    if (!disk::rename(path, m_path))
        return false;
    disk::syncFolder(QFileInfo(m_path).absolutePath());
    return true;
}
