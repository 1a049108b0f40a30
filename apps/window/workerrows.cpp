// What the window shows of the tasks, gathered to few signals.
#include "driver/conversions.h"
#include "driver/taskrecord.h"
#include "enginesettings.h"
#include "worker.h"

#include <QDomDocument>
#include <QJsonObject>

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::milliseconds repaintEvery{200};

QList<QPair<QString, QString>> fieldsOf(CXMLInfo &record)
{
    QDomDocument document;
    QDomElement task = document.createElement(QStringLiteral("Info"));
    record.toDomNode(document, task);
    QList<QPair<QString, QString>> fields;
    for (QDomElement field = task.firstChildElement(); !field.isNull();
         field = field.nextSiblingElement()) {
        if (field.firstChildElement().isNull())
            fields.append({field.nodeName(), field.text()});
    }
    return fields;
}

} // namespace

void Worker::findDetails(const QString &key)
{
    TaskDetails details;
    details.key = key;
    details.failure = m_failures.value(key);
    const QJsonObject conversion = conversions::describe(m_session->controller(), key);
    if (conversion.value(QStringLiteral("needed")).toBool())
        details.conversion = conversion.value(QStringLiteral("target")).toString();
    {
        const ControllerLock lock;
        CXMLInfo *record = m_session->controller().getXMLInfo(key);
        if (record == nullptr)
            return;
        details.title = record->Title;
        details.fields = fieldsOf(*record);
        details.formats = VideoOffer(record->fmt_list, record->fmt_stream_map).formats();
        details.files = taskrecord::filesOf(*record, unfinishedFiles);
    }
    emit detailsFound(details);
}

void Worker::findAbilities(const QStringList &keys)
{
    Abilities abilities;
    abilities.keys = keys;
    const QSet<QString> wanted(keys.cbegin(), keys.cend());
    {
        const ControllerLock lock;
        const auto &all = m_session->controller().m_pHistory->m_InfoList;
        for (auto record = all.cbegin(); record != all.cend() && !abilities.possible.all();
             ++record) {
            if (wanted.contains((*record)->MD5Code))
                judge(**record, abilities);
        }
    }
    emit abilitiesFound(abilities);
}

void Worker::judge(const CXMLInfo &record, Abilities &abilities) const
{
    for (std::size_t each = 0; each < taskActionCount; ++each) {
        const auto action = TaskAction(each);
        if (abilities.can(action))
            continue;
        const auto obstacle = isReadOnly() && action != TaskAction::Open
                                  ? std::optional(tr("another program has the history"))
                                  : m_session->obstacle(record, action);
        abilities.possible.set(each, !obstacle.has_value());
        abilities.obstacles[each] = obstacle.value_or(QString());
    }
}

void Worker::readAll()
{
    QList<TaskRow> rows;
    {
        const ControllerLock lock;
        const auto &all = m_session->controller().m_pHistory->m_InfoList;
        rows.reserve(all.size());
        for (const CXMLInfo *record : all)
            rows << rowOf(*record);
    }
    if (!rows.isEmpty())
        emit rowsChanged(rows);
    emit totalsChanged(m_session->driver().totals());
}

void Worker::change(const QString &key)
{
    m_changed << key;
    if (!m_gather.isActive())
        m_gather.start(repaintEvery);
}

void Worker::emitChanges()
{
    if (!m_session)
        return;
    QStringList changed = std::exchange(m_changed, {});
    changed.removeDuplicates();
    QList<TaskRow> rows;
    for (const QString &key : std::as_const(changed)) {
        const ControllerLock lock;
        const CXMLInfo *record = m_session->controller().getXMLInfo(key);
        if (record != nullptr && !m_inspecting.contains(key))
            rows << rowOf(*record);
    }
    if (!rows.isEmpty())
        emit rowsChanged(rows);
    emit totalsChanged(m_session->driver().totals());
}

TaskRow Worker::rowOf(const CXMLInfo &record) const
{
    TaskRow row;
    row.key = record.MD5Code;
    row.title = record.Title;
    row.address = record.OrgWebSite;
    row.path = taskrecord::outputPath(record);
    row.thumbnail = record.ImagePath;
    row.added = record.TaskCreateTime;
    row.state = taskrecord::stateOf(record);
    row.activity = m_session->driver().activity(row.key);
    row.isConverting = m_session->isConverting(row.key);
    row.failure = m_failures.value(row.key);
    row.progress =
        row.isConverting ? m_progress.value(row.key) : m_session->driver().progress(row.key);
    if (row.progress.total == 0)
        row.progress.total = record.FileSize;
    const bool isMoving = row.progress.received > 0 && row.progress.total > 0;
    row.percent = isMoving ? int(double(row.progress.received) / double(row.progress.total) * 100)
                           : std::clamp(record.Progress, 0, 100);
    return row;
}
