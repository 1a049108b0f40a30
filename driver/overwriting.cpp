#include "driver/overwriting.h"

#include "driver/disk.h"
#include "driver/texts.h"

#include <QFileInfo>

#include <algorithm>

namespace overwriting {

namespace {

// A task that failed or was stopped gives its name up, if somebody else has it by then; and one
// that is finished, if its file is gone.
bool isFileOf(const CXMLInfo &record, const QString &path)
{
    const bool isFinished = taskrecord::stateOf(record) == TaskState::Finished;
    if (!taskrecord::isInterrupted(record) && !(isFinished && disk::isTaken(path)))
        return false;
    const bool hasCopy = record.IsOrgVideo == 1 || !record.ConvertionDesc.isEmpty();
    return disk::isSamePath(record.FileName, path) ||
           (hasCopy && disk::isSamePath(record.SaveAsFileName, path));
}

bool isFileOfAnother(CDown &controller, const QString &key, const QString &path)
{
    const ControllerLock lock;
    const auto &all = controller.m_pHistory->m_InfoList;
    return std::any_of(all.cbegin(), all.cend(), [&](const CXMLInfo *record) {
        return record->MD5Code != key && isFileOf(*record, path);
    });
}

} // namespace

std::optional<QString> obstacle(CDown &controller, const QString &key, const QString &path,
                                const UnfinishedFiles &unfinished)
{
    if (disk::isTaken(path) && (QFileInfo(path).isSymLink() || !QFileInfo(path).isFile()))
        return Texts::tr("\"%1\" is not a file").arg(path);
    if (isFileOfAnother(controller, key, path))
        return Texts::tr("\"%1\" is the file of another task").arg(path);
    const QStringList parts = unfinished ? unfinished(path) : QStringList();
    if (std::any_of(parts.begin(), parts.end(), disk::isTaken))
        return Texts::tr("\"%1\" is the name of an unfinished download").arg(path);
    return std::nullopt;
}

} // namespace overwriting
