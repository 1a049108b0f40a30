// Loading a history and its journal, and setting aside what is damaged: the keeper's part of it.
#include "driver/disk.h"
#include "driver/historycheck.h"
#include "driver/historykeeper.h"
#include "driver/journal.h"
#include "driver/journalentry.h"
#include "driver/leftovers.h"
#include "driver/recordtext.h"
#include "history/historyfile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <future>
#include <utility>

namespace {

QString unusedName(const QString &wanted)
{
    QString name = wanted;
    for (int n = 1; disk::isTaken(name); ++n)
        name = wanted + u'-' + QString::number(n);
    return name;
}

QString asideName(const QString &path)
{
    const QString date = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    return unusedName(path + QLatin1String(".damaged-") + date);
}

// What the lines of one task come to.
struct TaskChanges
{
    QJsonObject fields;
    QJsonValue upgrade; // of one that has not ended
    QJsonValue moved;   // files that perhaps were
    bool dropped = false;
};

} // namespace

QString HistoryKeeper::load()
{
    const QFileInfo file(m_path);
    if (file.exists() && !file.isFile())
        return tr("%1 is not a file").arg(m_path);
    const bool hasJournal = QFileInfo::exists(m_path + QLatin1String(".journal"));
    if (file.exists() && (hasJournal || m_expectsChanges)) {
        const MutexLock lock(m_mutex);
        m_digestOfLoaded = std::async(std::launch::async, Journal::digestOfFile, m_path);
    }
    const bool intact = !file.exists() || loadTasks();
    QList<QJsonObject> entries;
    auto found = Journal::Found::Nothing;
    if (hasJournal) {
        const MutexLock lock(m_mutex);
        found = m_journal->open(m_path, digest(), entries);
    }
    if (found == Journal::Found::Foreign && intact)
        return setAsideForeignJournal();
    replay(entries); // of a damaged history it is the journal, whatever its digest
    return intact ? QString() : setAside();
}

// Whether the file was well-formed: only of what is not as a history is written is that asked anew.
bool HistoryKeeper::loadTasks()
{
    CXMLHistory *history = nullptr;
    {
        const ControllerLock lock;
        history = m_controller.m_pHistory;
    }
    const historyfile::Loaded loaded = historyfile::load(m_path, history);
    {
        const ControllerLock lock;
        history->m_InfoList.append(loaded.tasks);
    }
    QFile file(m_path);
    return loaded.isPlain || (file.open(QIODevice::ReadOnly) && isWellFormed(file));
}

// A second name rather than a new one: the history keeps a name at every moment.
QString HistoryKeeper::setAside()
{
    const QString aside = asideName(m_path);
    std::error_code error;
    std::filesystem::create_hard_link(disk::native(m_path), disk::native(aside), error);
    if (error && !QFile::rename(m_path, aside))
        return tr("%1 is damaged and cannot be set aside").arg(m_path);
    // The saves to come would replace the version before, which may have what the damaged one lost.
    std::filesystem::create_hard_link(disk::native(m_path + QLatin1String(".previous")),
                                      disk::native(aside + QLatin1String(".previous")), error);
    m_setAside = aside;
    m_open = true;
    return save();
}

QString HistoryKeeper::setAsideForeignJournal()
{
    const QString journal = m_path + QLatin1String(".journal");
    const QString aside = asideName(journal);
    if (!disk::rename(journal, aside))
        return tr("%1 belongs to another history and cannot be set aside").arg(journal);
    m_setAsideJournal = aside;
    return {};
}

// In one pass over the lines, then one over the tasks that they name.
void HistoryKeeper::replay(const QList<QJsonObject> &entries)
{
    QStringList order;
    QHash<QString, TaskChanges> tasks;
    for (const QJsonObject &entry : entries) {
        const QString key = entry.value(journalentry::task).toString();
        if (!tasks.contains(key))
            order.append(key);
        TaskChanges &task = tasks[key];
        if (entry.contains(journalentry::dropped))
            task = {};
        task.dropped = entry.contains(journalentry::dropped);
        task.fields = recordtext::merged(task.fields, entry.value(journalentry::fields).toObject());
        if (entry.contains(journalentry::upgrade))
            task.upgrade = entry.value(journalentry::upgrade);
        if (entry.contains(journalentry::moved))
            task.moved = entry.value(journalentry::moved);
    }
    for (const QString &key : std::as_const(order)) {
        leftovers::Names left;
        {
            const ControllerLock lock;
            CXMLInfo *record = m_controller.getXMLInfo(key);
            if (tasks[key].dropped) {
                const std::unique_ptr<CXMLInfo> unlinked(record);
                m_controller.remove(key, false);
                continue;
            }
            if (record == nullptr && tasks[key].fields.isEmpty())
                continue;
            if (record == nullptr)
                record = m_controller.m_pHistory->Add(nullptr);
            recordtext::setFields(
                *record, recordtext::merged(recordtext::fieldsOf(*record), tasks[key].fields));
            if (tasks[key].moved.isObject())
                leftovers::follow(*record, journalentry::movedIn(tasks[key].moved.toObject()));
            left = leftovers::of(*record, m_unfinished);
        }
        leftovers::remove(left);
        if (tasks[key].upgrade.isObject())
            leftovers::undo(journalentry::upgradeIn(tasks[key].upgrade.toObject()), m_unfinished);
    }
}
