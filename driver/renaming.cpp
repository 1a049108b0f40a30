#include "driver/renaming.h"

#include "driver/disk.h"
#include "driver/outputname.h"
#include "driver/plaintext.h"
#include "driver/taskrecord.h"
#include "driver/texts.h"

#include <QFileInfo>

namespace {

// The names before and after, and what a rename would get in the way of.
struct Renaming
{
    QString key;
    QString base;
    QString oldVideo, newVideo;
    QString oldCopy, newCopy; // empty: no copy of its own
};

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
    if (const auto why = taskrecord::obstacle(record, TaskAction::Rename))
        return *why;
    if (names.base.isEmpty())
        return Texts::tr("nothing of that name can be used in a file name");
    const bool isOwn = record.IsOrgVideo == 1 || !record.ConvertionDesc.isEmpty();
    if (!names.oldCopy.isEmpty() &&
        (!isOwn || inFolderOf(names.oldCopy, record.BaseName) != names.oldCopy))
        return Texts::tr("\"%1\" is not the task's, or has another name than the video")
            .arg(names.oldCopy);
    for (const QString &path : {names.newVideo, names.newCopy}) {
        if (!path.isEmpty() && disk::isTaken(path))
            return Texts::tr("\"%1\" exists already").arg(path);
    }
    return {};
}

// The library's answer is false also when there was no copy to rename.
bool renameFiles(CDown &controller, const Renaming &names)
{
    const bool both = controller.setSaveAsFileName(names.key, names.newVideo, names.base);
    return both || (names.oldCopy.isEmpty() && disk::isTaken(names.newVideo));
}

} // namespace

QString renameTask(CDown &controller, const QString &key, const QString &name,
                   const UnfinishedFiles &unfinished)
{
    Renaming names;
    {
        const ControllerLock lock;
        const CXMLInfo *record = controller.getXMLInfo(key);
        if (record == nullptr)
            return Texts::tr("there is no such task");
        names = renamingOf(*record, name);
        QString why = obstacle(*record, names);
        if (!why.isEmpty())
            return why;
        if (isAwaited(controller, key, names.newVideo, unfinished))
            return Texts::tr("\"%1\" is the name of an unfinished download").arg(names.newVideo);
    }
    if (renameFiles(controller, names))
        return {};
    return disk::isTaken(names.oldVideo)
               ? Texts::tr("\"%1\" cannot be renamed").arg(names.oldVideo)
               : Texts::tr(R"("%1" cannot be renamed; the video is "%2" now)")
                     .arg(names.oldCopy, names.newVideo);
}
