#include "driver/historykeeper.h"

#include "driver/disk.h"
#include "driver/historycheck.h"
#include "driver/historylock.h"
#include "driver/journal.h"
#include "driver/leftovers.h"
#include "driver/recordtext.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

#include <filesystem>
#include <future>
#include <utility>

namespace {

// A journal that is longer than its history and this takes longer to read than the history.
constexpr qint64 shortJournal = qint64{1} << 20;

const QString taskName = QStringLiteral("task");
const QString fieldsName = QStringLiteral("fields");
const QString upgradeName = QStringLiteral("upgrade");

// A link would be replaced by the rename of a save, so the file behind it is the history.
QString realPath(const QString &path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QFileInfo(path).absoluteFilePath() : canonical;
}

std::filesystem::path native(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

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

QJsonObject asJson(const UpgradeFiles &files)
{
    QJsonArray old;
    for (const auto &[path, aside] : files.old)
        old.append(QJsonArray{path, aside});
    return {{QStringLiteral("old"), old},
            {QStringLiteral("fresh"), QJsonArray::fromStringList(files.fresh)},
            {QStringLiteral("freshSize"), files.freshSize}};
}

UpgradeFiles upgradeIn(const QJsonObject &json)
{
    UpgradeFiles files;
    for (const auto &pair : json.value(QStringLiteral("old")).toArray())
        files.old.append({pair[0].toString(), pair[1].toString()});
    for (const auto &path : json.value(QStringLiteral("fresh")).toArray())
        files.fresh.append(path.toString());
    files.freshSize = json.value(QStringLiteral("freshSize")).toInteger();
    return files;
}

// What the lines of one task come to.
struct TaskChanges
{
    QJsonObject fields;
    QJsonValue upgrade; // of one that has not ended
};

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

QString HistoryKeeper::load()
{
    const QFileInfo file(m_path);
    if (file.exists() && !file.isFile())
        return tr("%1 is not a file").arg(m_path);
    // Beside the loading, which takes several times as long.
    std::future<std::optional<int>> count;
    if (file.exists()) {
        count = std::async(std::launch::async, countTasks, m_path);
        m_controller.LoadFromFile(m_path);
    }
    const bool intact = !count.valid() || count.get().has_value();
    QList<QJsonObject> entries;
    const bool hasJournal = QFileInfo::exists(m_path + QLatin1String(".journal"));
    const auto found =
        hasJournal ? m_journal->open(Journal::digestOf(m_path), entries) : Journal::Found::Nothing;
    if (found == Journal::Found::Foreign && intact)
        return setAsideForeignJournal();
    replay(entries); // of a damaged history it is the journal, whatever its digest
    return intact ? QString() : setAside();
}

// A second name rather than a new one: the history keeps a name at every moment.
QString HistoryKeeper::setAside()
{
    const QString aside = asideName(m_path);
    std::error_code error;
    std::filesystem::create_hard_link(native(m_path), native(aside), error);
    if (error && !QFile::rename(m_path, aside))
        return tr("%1 is damaged and cannot be set aside").arg(m_path);
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

QString HistoryKeeper::setAsidePath() const
{
    return m_setAside;
}

QString HistoryKeeper::setAsideJournal() const
{
    return m_setAsideJournal;
}

// In one pass over the lines, then one over the tasks that they name.
void HistoryKeeper::replay(const QList<QJsonObject> &entries)
{
    QStringList order;
    QHash<QString, TaskChanges> tasks;
    for (const QJsonObject &entry : entries) {
        const QString key = entry.value(taskName).toString();
        if (!tasks.contains(key))
            order.append(key);
        TaskChanges &task = tasks[key];
        task.fields = recordtext::merged(task.fields, entry.value(fieldsName).toObject());
        if (entry.contains(upgradeName))
            task.upgrade = entry.value(upgradeName);
    }
    for (const QString &key : std::as_const(order)) {
        leftovers::Names left;
        {
            const ControllerLock lock;
            CXMLInfo *record = m_controller.getXMLInfo(key);
            if (record == nullptr && tasks[key].fields.isEmpty())
                continue;
            if (record == nullptr)
                record = m_controller.m_pHistory->Add(nullptr);
            recordtext::setFields(
                *record, recordtext::merged(recordtext::fieldsOf(*record), tasks[key].fields));
            left = leftovers::of(*record, m_unfinished);
        }
        leftovers::remove(left);
        if (tasks[key].upgrade.isObject())
            leftovers::undo(upgradeIn(tasks[key].upgrade.toObject()), m_unfinished);
    }
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
            entries.append({{taskName, key}, {fieldsName, changed}});
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
        if (!m_digest)
            m_digest = Journal::digestOf(m_path);
        digest = *m_digest;
    }
    if (!m_journal->append(entries, digest) || !m_journal->sync())
        return reportSave(tr("%1.journal cannot be written; the disk may be full").arg(m_path));
    if (m_journal->size() > shortJournal + QFileInfo(m_path).size())
        return reportSave(save());
    return reportSave({});
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
    QJsonObject entry{{taskName, key}};
    const auto upgrade = m_upgrades.find(key);
    if (upgrade == m_upgrades.end()) {
        entry.insert(fieldsName, QJsonObject{{QStringLiteral("FileSize"), QString::number(bytes)}});
    } else {
        upgrade->insert(QStringLiteral("freshSize"), bytes);
        entry.insert(upgradeName, *upgrade);
    }
    if (m_saving)
        m_late.append(entry);
    if (m_digest) // else no task of this program is in the journal
        m_journal->append({entry}, *m_digest);
}

bool HistoryKeeper::beginUpgrade(const QString &key, const UpgradeFiles &files)
{
    const QJsonObject upgrade = asJson(files);
    {
        const MutexLock lock(m_mutex);
        m_upgrades.insert(key, upgrade);
    }
    m_atWork.insert(key);
    return append({QJsonObject{{taskName, key}, {upgradeName, upgrade}}});
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
    if (append(
            {QJsonObject{{taskName, key}, {fieldsName, changed}, {upgradeName, QJsonValue::Null}}}))
        return;
    m_unstored.insert(key);
    m_stored.remove(key);
}

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
    QString problem = writeNew(fresh);
    const QByteArray digest = problem.isEmpty() ? Journal::digestOf(fresh) : QByteArray();
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
        entries.append({{taskName, key}});
    for (auto upgrade = m_upgrades.begin(); upgrade != m_upgrades.end(); ++upgrade)
        entries.append({{taskName, upgrade.key()}, {upgradeName, *upgrade}});
    entries += late;
    if (!entries.isEmpty())
        m_journal->append(entries, *m_digest);
}

// The library reports no failure of a save, so what it wrote is read back.
QString HistoryKeeper::writeNew(const QString &path)
{
    QFile::remove(path);
    m_controller.SaveToFile(path);
    if (!QFileInfo::exists(path))
        return tr("%1 cannot be written").arg(path);
    if (countTasks(path) != m_controller.count() || !disk::syncFile(path))
        return tr("%1 could not be written whole; the disk may be full").arg(path);
    return {};
}

bool HistoryKeeper::replaceBy(const QString &path)
{
    const QString previous = m_path + QLatin1String(".previous");
    std::error_code ignored; // without a previous version the save is no less safe
    std::filesystem::remove(native(previous), ignored);
    std::filesystem::create_hard_link(native(m_path), native(previous), ignored);
    if (!disk::rename(path, m_path))
        return false;
    disk::syncFolder(QFileInfo(m_path).absolutePath());
    return true;
}
