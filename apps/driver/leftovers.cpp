#include "driver/leftovers.h"

#include "driver/disk.h"

#include <QFile>
#include <QFileInfo>

namespace leftovers {

// A video is resumed; a thumbnail is fetched anew, if at all.
Names of(const CXMLInfo &record, const UnfinishedFiles &unfinished)
{
    Names names{{record.ImagePath}, {}};
    if (unfinished && !record.ImagePath.isEmpty())
        names.unfinished = unfinished(record.ImagePath);
    if (!taskrecord::isInterrupted(record))
        return names;
    names.reserved << record.FileName;
    if (record.IsOrgVideo == 1)
        names.reserved << record.SaveAsFileName;
    return names;
}

void remove(const Names &names)
{
    for (const QString &path : names.reserved)
        disk::removeIfEmpty(path);
    for (const QString &path : names.unfinished)
        QFile::remove(path);
}

void undo(const UpgradeFiles &upgrade, const UnfinishedFiles &unfinished)
{
    for (const QString &path : upgrade.fresh) {
        disk::removeIfEmpty(path);
        if (unfinished)
            remove({{}, unfinished(path)});
        if (upgrade.freshSize > 0 && QFileInfo(path).size() == upgrade.freshSize)
            QFile::remove(path);
    }
    for (const auto &[path, aside] : upgrade.old) {
        if (disk::isTaken(aside) && !disk::isTaken(path))
            disk::rename(aside, path);
    }
}

} // namespace leftovers
