#include "commandhistory.h"

#include "standardstreams.h"
#include "taskengine/unfinishedfiles.h"

#include <QFile>
#include <QStandardPaths>

namespace commandhistory {

namespace {

void warn(const QString &message)
{
    standardstreams::writeMessage(QStringLiteral("videodown: ") + message);
}

bool reportOpened(const QString &problem, const HistoryKeeper &keeper)
{
    if (!problem.isEmpty())
        warn(problem);
    else if (!keeper.setAsidePath().isEmpty())
        warn(QStringLiteral("the history was damaged; what could be read of it was kept. The "
                            "damaged file is now %1; the version before it, if there was one, is "
                            "beside it with \".previous\" added to the name")
                 .arg(keeper.setAsidePath()));
    if (!keeper.setAsideJournal().isEmpty())
        warn(QStringLiteral("the journal beside the history belongs to another history; it is now "
                            "%1")
                 .arg(keeper.setAsideJournal()));
    return problem.isEmpty();
}

QStringList keysBeginningWith(CDown &controller, const QString &text)
{
    const ControllerLock lock;
    QStringList keys;
    for (const CXMLInfo *record : std::as_const(controller.m_pHistory->m_InfoList)) {
        if (record->MD5Code.startsWith(text, Qt::CaseInsensitive))
            keys << record->MD5Code;
    }
    return keys;
}

QString keyNamed(CDown &controller, const QString &name)
{
    QString ofAddress = CDown::GetURLToMD5(name);
    if (controller.TaskExist(ofAddress))
        return ofAddress;
    const QStringList keys = name.isEmpty() ? QStringList() : keysBeginningWith(controller, name);
    if (keys.size() == 1)
        return keys.first();
    warn(keys.isEmpty()
             ? QStringLiteral("the history has no task \"%1\"").arg(name)
             : QStringLiteral("%1 tasks have keys that begin with \"%2\"; give more of the key")
                   .arg(keys.size())
                   .arg(name));
    return {};
}

} // namespace

QStringList unfinishedFiles(const QString &path)
{
    const auto files = taskengine::unfinishedFiles(QFile::encodeName(path).toStdString());
    return {QFile::decodeName(files.part.c_str()), QFile::decodeName(files.facts.c_str())};
}

QString pathFor(const CommandLine &line)
{
    if (!line.historyFile.isEmpty())
        return line.historyFile;
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QLatin1String("/videodown/history.xml");
}

bool open(HistoryKeeper &keeper)
{
    return reportOpened(keeper.open(), keeper);
}

bool open(DownloadSession &session, const QString &path)
{
    const QString problem = session.open(path);
    if (session.keeper() != nullptr)
        return reportOpened(problem, *session.keeper());
    warn(problem);
    return false;
}

bool reportProblem(const QString &problem)
{
    if (!problem.isEmpty())
        warn(QStringLiteral("the history cannot be saved: ") + problem);
    return problem.isEmpty();
}

bool save(HistoryKeeper &keeper)
{
    return reportProblem(keeper.save());
}

std::optional<QStringList> keysOf(CDown &controller, const QStringList &names)
{
    QStringList keys;
    for (const QString &name : names)
        keys << keyNamed(controller, name);
    if (keys.contains(QString()))
        return std::nullopt;
    keys.removeDuplicates();
    return keys;
}

QString keyOf(CDown &controller, const CommandLine &line)
{
    return keyNamed(controller, line.arguments.value(0));
}

QString titleOf(const CXMLInfo &record)
{
    return record.Title.isEmpty() ? record.OrgWebSite : record.Title;
}

History::History(const CommandLine &line)
    : controller(nullptr), keeper(controller, pathFor(line), unfinishedFiles)
{
}

} // namespace commandhistory
