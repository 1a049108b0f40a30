// What goes to the journal: the keeper's part of it.
#include "driver/historykeeper.h"
#include "driver/journal.h"
#include "driver/journalentry.h"
#include "driver/recordtext.h"
#include "history/storedtexts.h"

#include <QFileInfo>

#include <utility>

namespace {

// A journal that is longer than its history and this takes longer to read than the history.
constexpr qint64 shortJournal = qint64{1} << 20;

} // namespace

// Of a task at rest nothing is remembered: its next change writes all of it.
QJsonObject HistoryKeeper::changeOf(const QString &key)
{
    QStringList now;
    {
        const ControllerLock lock;
        const CXMLInfo *record = m_controller.getXMLInfo(key);
        if (record == nullptr)
            return {};
        now = storedtexts::of(*record);
        if (taskrecord::isInterrupted(*record))
            m_atWork.insert(key);
    }
    QJsonObject changed = recordtext::changes(m_stored.value(key), now);
    if (m_atWork.contains(key))
        m_stored.insert(key, now);
    return changed;
}

bool HistoryKeeper::hasBegun(const QString &key)
{
    const MutexLock lock(m_mutex);
    return m_begun.contains(key);
}

bool HistoryKeeper::commit(const QStringList &keys)
{
    QSet<QString> due(keys.cbegin(), keys.cend());
    due.unite(std::exchange(m_unstored, {}));
    QList<QJsonObject> entries;
    for (const QString &key : std::as_const(due)) {
        const QJsonObject changed = hasBegun(key) ? QJsonObject() : changeOf(key);
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

bool HistoryKeeper::drop(const QString &key)
{
    settle(key);
    m_unstored.remove(key);
    return append({QJsonObject{{journalentry::task, key}, {journalentry::dropped, true}}});
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
    const auto begun = m_begun.find(key);
    if (begun == m_begun.end()) {
        entry.insert(journalentry::fields,
                     QJsonObject{{QStringLiteral("FileSize"), QString::number(bytes)}});
    } else { // no video is fetched while its files are moved
        QJsonObject upgrade = begun->value(journalentry::upgrade).toObject();
        upgrade.insert(QStringLiteral("freshSize"), bytes);
        begun->insert(journalentry::upgrade, upgrade);
        entry = *begun;
    }
    if (m_saving)
        m_late.append(entry);
    if (m_digest) // else no task of this program is in the journal
        m_journal->append({entry}, *m_digest);
}

bool HistoryKeeper::beginUpgrade(const QString &key, const UpgradeFiles &files)
{
    return begin(key, journalentry::upgrade, journalentry::asJson(files));
}

void HistoryKeeper::endUpgrade(const QString &key)
{
    end(key, journalentry::upgrade);
}

bool HistoryKeeper::beginMove(const QString &key, const MovedFiles &files)
{
    return begin(key, journalentry::moved, journalentry::asJson(files));
}

void HistoryKeeper::endMove(const QString &key)
{
    end(key, journalentry::moved);
}

bool HistoryKeeper::begin(const QString &key, const QString &what, const QJsonObject &files)
{
    const QJsonObject entry{{journalentry::task, key}, {what, files}};
    {
        const MutexLock lock(m_mutex);
        m_begun.insert(key, entry);
    }
    m_atWork.insert(key);
    return append({entry});
}

// The line that ends it goes with the record, so that neither is on disk without the other.
void HistoryKeeper::end(const QString &key, const QString &what)
{
    {
        const MutexLock lock(m_mutex);
        if (m_begun.remove(key) == 0)
            return;
    }
    const QJsonObject changed = changeOf(key);
    if (append({QJsonObject{
            {journalentry::task, key}, {journalentry::fields, changed}, {what, QJsonValue::Null}}}))
        return;
    m_unstored.insert(key);
    m_stored.remove(key);
}
