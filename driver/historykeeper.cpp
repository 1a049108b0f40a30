#include "driver/historykeeper.h"

#include "driver/disk.h"
#include "driver/historylock.h"
#include "driver/journal.h"
#include "driver/journalentry.h"
#include "driver/recordtext.h"
#include "history/historyfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <utility>

namespace {

// A journal that is longer than its history and this takes longer to read than the history.
constexpr qint64 shortJournal = qint64{1} << 20;

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

// Of a task at rest nothing is remembered: its next change writes all of it.
QJsonObject HistoryKeeper::changeOf(const QString &key)
{
    QJsonObject now;
    {
        const ControllerLock lock;
        CXMLInfo *record = m_controller.getXMLInfo(key);
        if (record == nullptr)
            return {};
        now = recordtext::fieldsOf(*record);
        if (taskrecord::isInterrupted(*record))
            m_atWork.insert(key);
    }
    QJsonObject changed = recordtext::changes(m_stored.value(key), now);
    if (m_atWork.contains(key))
        m_stored.insert(key, now);
    return changed;
}

bool HistoryKeeper::isUpgrading(const QString &key)
{
    const MutexLock lock(m_mutex);
    return m_upgrades.contains(key);
}

bool HistoryKeeper::commit(const QStringList &keys)
{
    QSet<QString> due(keys.cbegin(), keys.cend());
    due.unite(std::exchange(m_unstored, {}));
    QList<QJsonObject> entries;
    for (const QString &key : std::as_const(due)) {
        const QJsonObject changed = isUpgrading(key) ? QJsonObject() : changeOf(key);
        if (!changed.isEmpty())
            entries.append({{journalentry::task, key}, {journalentry::fields, changed}});
    }
    if (entries.isEmpty() || append(entries))
        return true;
    m_unstored = due;
    for (const QString &key : std::as_const(due))
        m_stored.remove(key);
    return false;
}

void HistoryKeeper::settle(const QString &key)
{
    m_atWork.remove(key);
    m_stored.remove(key);
}

bool HistoryKeeper::append(const QList<QJsonObject> &entries)
{
    if (!m_open)
        return reportSave(tr("the history is not open"));
    QByteArray digest;
    {
        const MutexLock lock(m_mutex);
        digest = this->digest();
    }
    if (!m_journal->append(entries, digest) || !m_journal->sync())
        return reportSave(tr("%1.journal cannot be written; the disk may be full").arg(m_path));
    if (m_journal->size() > shortJournal + QFileInfo(m_path).size())
        return reportSave(save());
    return reportSave({});
}

QByteArray HistoryKeeper::digest()
{
    if (!m_digest)
        m_digest =
            m_digestOfLoaded.valid() ? m_digestOfLoaded.get() : Journal::digestOfFile(m_path);
    return *m_digest;
}

bool HistoryKeeper::reportSave(const QString &problem)
{
    if (!problem.isEmpty() && !m_failing)
        emit saveFailed(problem);
    m_failing = !problem.isEmpty();
    return problem.isEmpty();
}

void HistoryKeeper::recordSize(const QString &key, qint64 bytes)
{
    const MutexLock lock(m_mutex);
    QJsonObject entry{{journalentry::task, key}};
    const auto upgrade = m_upgrades.find(key);
    if (upgrade == m_upgrades.end()) {
        entry.insert(journalentry::fields,
                     QJsonObject{{QStringLiteral("FileSize"), QString::number(bytes)}});
    } else {
        upgrade->insert(QStringLiteral("freshSize"), bytes);
        entry.insert(journalentry::upgrade, *upgrade);
    }
    if (m_saving)
        m_late.append(entry);
    if (m_digest) // else no task of this program is in the journal
        m_journal->append({entry}, *m_digest);
}

bool HistoryKeeper::beginUpgrade(const QString &key, const UpgradeFiles &files)
{
    const QJsonObject upgrade = journalentry::asJson(files);
    {
        const MutexLock lock(m_mutex);
        m_upgrades.insert(key, upgrade);
    }
    m_atWork.insert(key);
    return append({QJsonObject{{journalentry::task, key}, {journalentry::upgrade, upgrade}}});
}

// The line that ends it goes with the record, so that neither is on disk without the other.
void HistoryKeeper::endUpgrade(const QString &key)
{
    {
        const MutexLock lock(m_mutex);
        if (m_upgrades.remove(key) == 0)
            return;
    }
    const QJsonObject changed = changeOf(key);
    if (append({QJsonObject{{journalentry::task, key},
                            {journalentry::fields, changed},
                            {journalentry::upgrade, QJsonValue::Null}}}))
        return;
    m_unstored.insert(key);
    m_stored.remove(key);
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
    for (auto upgrade = m_upgrades.begin(); upgrade != m_upgrades.end(); ++upgrade)
        entries.append({{journalentry::task, upgrade.key()}, {journalentry::upgrade, *upgrade}});
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
