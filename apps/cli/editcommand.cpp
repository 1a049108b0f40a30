#include "editcommand.h"

#include "driver/plaintext.h"
#include "driver/taskrecord.h"
#include "standardstreams.h"
#include "stored.h"

#include <QFile>
#include <QFileInfo>

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
    for (const QString &path : taskrecord::filesOf(record, stored::unfinishedFiles)) {
        if (!QFile::remove(path)) {
            refuse(QStringLiteral("\"%1\" cannot be deleted").arg(path));
            deleted = false;
        }
    }
    return deleted;
}

// The names before and after, and what a rename would get in the way of.
struct Renaming
{
    QString key;
    QString base;
    QString oldVideo, newVideo;
    QString oldCopy, newCopy; // empty: no copy of its own
};

bool isThere(const QString &path)
{
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

QString inFolderOf(const QString &path, const QString &base)
{
    const QFileInfo file(path);
    return file.path() + u'/' + base + u'.' + file.suffix();
}

// Without the extension, if the user typed it.
QString baseOf(QString name, const QString &extension)
{
    if (name.endsWith(u'.' + extension, Qt::CaseInsensitive))
        name.chop(extension.size() + 1);
    return plaintext::fileTitle(name, {});
}

Renaming renamingOf(const CXMLInfo &record, const QString &name)
{
    Renaming names;
    names.key = record.MD5Code;
    names.oldVideo = record.FileName;
    names.base = baseOf(name, QFileInfo(record.FileName).suffix());
    names.newVideo = inFolderOf(record.FileName, names.base);
    if (record.SaveAsFileName != record.FileName && QFileInfo::exists(record.SaveAsFileName)) {
        names.oldCopy = record.SaveAsFileName;
        names.newCopy = inFolderOf(record.SaveAsFileName, names.base);
    }
    return names;
}

QString obstacle(const CXMLInfo &record, const Renaming &names)
{
    if (taskrecord::stateOf(record) != TaskState::Finished || !isThere(names.oldVideo))
        return QStringLiteral("only a finished task whose file is there can be renamed");
    if (names.base.isEmpty())
        return QStringLiteral("nothing of that name can be used in a file name");
    const bool isOwn = record.IsOrgVideo == 1 || !record.ConvertionDesc.isEmpty();
    if (!names.oldCopy.isEmpty() &&
        (!isOwn || inFolderOf(names.oldCopy, record.BaseName) != names.oldCopy))
        return QStringLiteral("\"%1\" is not the task's, or has another name than the video")
            .arg(names.oldCopy);
    for (const QString &path : {names.newVideo, names.newCopy}) {
        if (!path.isEmpty() && isThere(path))
            return QStringLiteral("\"%1\" exists already").arg(path);
    }
    return {};
}

// The library's answer is false also when there was no copy to rename.
bool renameFiles(CDown &controller, const Renaming &names)
{
    const bool both = controller.setSaveAsFileName(names.key, names.newVideo, names.base);
    return both || (names.oldCopy.isEmpty() && isThere(names.newVideo));
}

} // namespace

ExitStatus runRemove(const CommandLine &line)
{
    stored::History history(line);
    if (!stored::open(history.keeper))
        return {ExitHistory, 0};
    const auto keys = stored::keysOf(history.controller, line.arguments);
    if (!keys)
        return {ExitFailed, 0};
    QList<std::shared_ptr<CXMLInfo>> removed; // unlinked records are ours
    for (const QString &key : *keys) {
        removed << std::shared_ptr<CXMLInfo>(history.controller.getXMLInfo(key));
        history.controller.remove(key, false);
    }
    bool done = stored::save(history.keeper);
    if (done && line.deleteFiles) {
        for (const auto &record : removed)
            done = deleteFilesOf(*record) && done;
    }
    return {done ? ExitDone : ExitFailed, 0};
}

ExitStatus runRename(const CommandLine &line)
{
    stored::History history(line);
    if (!stored::open(history.keeper))
        return {ExitHistory, 0};
    const QString key = stored::keyOf(history.controller, line);
    if (key.isEmpty())
        return {ExitFailed, 0};
    Renaming names;
    QString why;
    {
        const ControllerLock lock;
        const CXMLInfo &record = *history.controller.getXMLInfo(key);
        names = renamingOf(record, line.newName);
        why = obstacle(record, names);
    }
    if (!why.isEmpty())
        return refuse(why);
    const bool renamed = renameFiles(history.controller, names);
    if (!renamed)
        refuse(isThere(names.oldVideo)
                   ? QStringLiteral("\"%1\" cannot be renamed").arg(names.oldVideo)
                   : QStringLiteral("\"%1\" cannot be renamed; the video is \"%2\" now")
                         .arg(names.oldCopy, names.newVideo));
    return {stored::save(history.keeper) && renamed ? ExitDone : ExitFailed, 0};
}
