#include "driver/leftovers.h"

#include "driver/disk.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace leftovers {

namespace {

// Whether the file of this name is the old one: it was never set aside, or is back already.
bool isInPlace(const UpgradeFiles &upgrade, const QString &path)
{
    return std::any_of(upgrade.old.cbegin(), upgrade.old.cend(), [&path](const auto &pair) {
        return pair.path == path && !disk::isTaken(pair.aside);
    });
}

} // namespace

// Whatever the key is, the name is none that anybody else would choose.
QString conversionPrefix(const QString &key)
{
    const QByteArray hash = QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha1);
    return QLatin1String(".converting-") + QString::fromLatin1(hash.toHex()) + u'-';
}

// A video is resumed; a thumbnail is fetched anew, if at all.
Names of(const CXMLInfo &record, const UnfinishedFiles &unfinished)
{
    Names names{{record.ImagePath}, {}, {}, {}};
    if (unfinished && !record.ImagePath.isEmpty())
        names.unfinished = unfinished(record.ImagePath);
    if (!taskrecord::isInterrupted(record))
        return names;
    names.reserved << record.FileName;
    if (record.IsOrgVideo == 1)
        names.reserved << record.SaveAsFileName;
    if (!taskrecord::isDownloaded(record))
        return names;
    // It had its name, but its end was not recorded, or that of its conversion.
    if (unfinished)
        names.unfinished << unfinished(record.FileName);
    names.conversion = conversionPrefix(record.MD5Code);
    for (const QString &path : {record.FileName, record.SaveAsFileName}) {
        const QString folder = QFileInfo(path).path();
        if (!path.isEmpty() && !names.folders.contains(folder))
            names.folders << folder;
    }
    return names;
}

void remove(const Names &names)
{
    for (const QString &path : names.reserved)
        disk::removeIfEmpty(path);
    for (const QString &path : names.unfinished)
        QFile::remove(path);
    for (const QDir folder : names.folders) {
        const auto files =
            folder.entryInfoList({names.conversion + u'*'}, QDir::Files | QDir::Hidden);
        for (const QFileInfo &file : files)
            QFile::remove(file.filePath());
    }
}

void undo(const UpgradeFiles &upgrade, const UnfinishedFiles &unfinished)
{
    for (const QString &path : upgrade.fresh) {
        if (unfinished)
            remove({{}, unfinished(path), {}, {}});
        if (isInPlace(upgrade, path))
            continue;
        disk::removeIfEmpty(path);
        if (upgrade.freshSize > 0 && QFileInfo(path).size() == upgrade.freshSize)
            QFile::remove(path);
    }
    for (const auto &[path, aside] : upgrade.old) {
        if (disk::isTaken(aside) && !disk::isTaken(path))
            disk::rename(aside, path);
    }
}

void follow(CXMLInfo &record, const MovedFiles &files)
{
    for (const auto &[from, to] : files.moves) {
        if (disk::isTaken(from) || QFileInfo(to).size() != files.size)
            continue;
        if (files.moves.size() == 1) // there is no copy
            record.SaveAsFileName = record.SaveAsPath + u'/' + QFileInfo(to).fileName();
        else if (record.SaveAsFileName == from)
            record.SaveAsFileName = to;
        if (record.FileName != from)
            continue;
        record.FileName = to;
        record.Title = record.BaseName = QFileInfo(to).completeBaseName();
    }
}

} // namespace leftovers
