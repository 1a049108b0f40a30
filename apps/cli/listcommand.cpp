#include "commands.h"

#include "commandhistory.h"
#include "driver/conversions.h"
#include "driver/taskrecord.h"
#include "driver/videoanswer.h"
#include "jsonline.h"
#include "standardstreams.h"
#include "terminaltext.h"

#include <QDomDocument>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringBuilder>

#include <array>
#include <cstdio>

namespace {

constexpr qsizetype shownKey = 8;

ExitStatus write(const QByteArray &text)
{
    return {standardstreams::writeOutput(text) == 0 ? ExitDone : ExitFailed, 0};
}

QString stateOf(const CXMLInfo &record)
{
    return stateName(taskrecord::stateOf(record));
}

QJsonObject summary(const CXMLInfo &record)
{
    return {{QStringLiteral("schema"), 1},
            {QStringLiteral("key"), record.MD5Code},
            {QStringLiteral("address"), record.OrgWebSite},
            {QStringLiteral("title"), record.Title},
            {QStringLiteral("state"), stateOf(record)},
            {QStringLiteral("bytes"), record.FileSize},
            {QStringLiteral("date"), record.DownLoadDate.toString(Qt::ISODate)},
            {QStringLiteral("path"), taskrecord::outputPath(record)}};
}

// Not by QDateTime::toString, with which a list of many tasks takes noticeably longer.
QString shown(const QDateTime &when)
{
    const QDate date = when.date();
    const QTime time = when.time();
    if (!when.isValid())
        return {};
    std::array<char, 32> text;
    const int size =
        std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d", date.year(),
                      date.month(), date.day(), time.hour(), time.minute());
    return QString::fromLatin1(text.data(), size);
}

QByteArray row(const CXMLInfo &record)
{
    const QString size = record.FileSize > 0 ? terminaltext::size(record.FileSize) : QString();
    const QLatin1String gap("  ");
    const QString text = QStringView(record.MD5Code).left(shownKey) % gap %
                         stateOf(record).leftJustified(11) % gap % size.rightJustified(10) % gap %
                         shown(record.DownLoadDate) % gap % commandhistory::titleOf(record);
    return standardstreams::shown(text).toUtf8() + '\n';
}

// Every field, under the name and in the form that it has in the history file.
QList<std::pair<QString, QString>> fieldsBelow(const QDomElement &parent)
{
    QList<std::pair<QString, QString>> fields;
    for (QDomElement field = parent.firstChildElement(); !field.isNull();
         field = field.nextSiblingElement()) {
        if (field.firstChildElement().isNull())
            fields.append({field.nodeName(), field.text()});
    }
    return fields;
}

QJsonObject asJson(const QDomElement &parent)
{
    QJsonObject object;
    for (const auto &[name, value] : fieldsBelow(parent))
        object.insert(name, value);
    return object;
}

QString asText(const QDomElement &parent, const QString &indent)
{
    QString text;
    for (const auto &[name, value] : fieldsBelow(parent))
        text += indent + name + QLatin1String(": ") + standardstreams::shown(value) + u'\n';
    return text;
}

QByteArray asJson(const CXMLInfo &record, const QDomElement &task, const QJsonObject &conversion)
{
    QJsonObject object = summary(record);
    object.insert(QStringLiteral("fields"), asJson(task));
    object.insert(QStringLiteral("profile"),
                  asJson(task.firstChildElement(QStringLiteral("Profile"))));
    object.insert(QStringLiteral("conversion"), conversion);
    object.insert(QStringLiteral("videoInfoFrom"), answerSourceName(answerSourceOf(record)));
    return jsonline::of(object);
}

QByteArray asText(const CXMLInfo &record, const QDomElement &task, const QJsonObject &conversion)
{
    QString text = QStringLiteral("state: %1\n").arg(stateOf(record));
    const QString source = answerSourceName(answerSourceOf(record));
    if (!source.isEmpty())
        text += QStringLiteral("video info from: %1\n").arg(source);
    text += asText(task, {}) + QStringLiteral("Profile:\n");
    text += asText(task.firstChildElement(QStringLiteral("Profile")), QStringLiteral("  "));
    text += QStringLiteral("conversion:\n");
    for (auto each = conversion.begin(); each != conversion.end(); ++each)
        text += QStringLiteral("  %1: %2\n")
                    .arg(each.key(), standardstreams::shown(each.value().toVariant().toString()));
    return text.toUtf8();
}

} // namespace

ExitStatus runList(const CommandLine &line)
{
    commandhistory::History history(line);
    if (!commandhistory::open(history.keeper))
        return {ExitHistory, 0};
    QByteArray text;
    const ControllerLock lock;
    for (const CXMLInfo *record : std::as_const(history.controller.m_pHistory->m_InfoList))
        text += line.json ? jsonline::of(summary(*record)) : row(*record);
    return write(text);
}

ExitStatus runShow(const CommandLine &line)
{
    commandhistory::History history(line);
    if (!commandhistory::open(history.keeper))
        return {ExitHistory, 0};
    const QString key = commandhistory::keyOf(history.controller, line);
    if (key.isEmpty())
        return {ExitFailed, 0};
    const ControllerLock lock;
    CXMLInfo *record = history.controller.getXMLInfo(key);
    QDomDocument document;
    QDomElement task = document.createElement(QStringLiteral("Info"));
    record->toDomNode(document, task);
    const QJsonObject conversion = conversions::describe(history.controller, key);
    return write(line.json ? asJson(*record, task, conversion) : asText(*record, task, conversion));
}
