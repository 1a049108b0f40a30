#include "commands.h"

#include "commandhistory.h"
#include "driver/renaming.h"
#include "driver/taskrecord.h"
#include "standardstreams.h"

#include <QFile>

#include <memory>

namespace {

ExitStatus refuse(const QString &why)
{
    standardstreams::writeMessage(QStringLiteral("videodown: ") + why);
    return {ExitFailed, 0};
}

// The record is out of the list and the history is saved before a file goes: rather a file without
// a task than a task without its file.
bool deleteFilesOf(const CXMLInfo &record)
{
    bool deleted = true;
    for (const QString &path : taskrecord::filesOf(record, commandhistory::unfinishedFiles)) {
        if (!QFile::remove(path)) {
            refuse(QStringLiteral("\"%1\" cannot be deleted").arg(path));
            deleted = false;
        }
    }
    return deleted;
}

} // namespace

ExitStatus runRemove(const CommandLine &line)
{
    commandhistory::History history(line);
    if (!commandhistory::open(history.keeper))
        return {ExitHistory, 0};
    const auto keys = commandhistory::keysOf(history.controller, line.arguments);
    if (!keys)
        return {ExitFailed, 0};
    QList<std::shared_ptr<CXMLInfo>> removed; // unlinked records are ours
    for (const QString &key : *keys) {
        removed << std::shared_ptr<CXMLInfo>(history.controller.getXMLInfo(key));
        history.controller.remove(key, false);
    }
    bool done = commandhistory::save(history.keeper);
    if (done && line.deleteFiles) {
        for (const auto &record : removed)
            done = deleteFilesOf(*record) && done;
    }
    return {done ? ExitDone : ExitFailed, 0};
}

ExitStatus runRename(const CommandLine &line)
{
    commandhistory::History history(line);
    if (!commandhistory::open(history.keeper))
        return {ExitHistory, 0};
    const QString key = commandhistory::keyOf(history.controller, line);
    if (key.isEmpty())
        return {ExitFailed, 0};
    const QString problem =
        renameTask(history.controller, key, line.newName, commandhistory::unfinishedFiles);
    if (!problem.isEmpty())
        refuse(problem);
    return {commandhistory::save(history.keeper) && problem.isEmpty() ? ExitDone : ExitFailed, 0};
}
