#include "driver/taskrecord.h"

#include "driver/disk.h"
#include "driver/texts.h"

#include <QFile>
#include <QFileInfo>

namespace taskrecord {

namespace {

bool isWhole(const QString &path, const CXMLInfo &record)
{
    const QFileInfo file(path);
    return record.FileSize > 0 && file.isFile() && file.size() == record.FileSize;
}

} // namespace

TaskState stateOf(const CXMLInfo &record)
{
    return static_cast<TaskState>(record.State);
}

bool isInterrupted(const CXMLInfo &record)
{
    return stateOf(record) == TaskState::Waiting || stateOf(record) == TaskState::Running;
}

bool hasFailedOrStopped(const CXMLInfo &record)
{
    return stateOf(record) == TaskState::Failed || stateOf(record) == TaskState::Stopped;
}

std::optional<QString> obstacle(const CXMLInfo &record, TaskAction action)
{
    const auto unless = [](bool possible, const QString &why) {
        return possible ? std::nullopt : std::optional(why);
    };
    const bool isFinished = stateOf(record) == TaskState::Finished;
    switch (action) {
    case TaskAction::Resume:
        return unless(isInterrupted(record) || stateOf(record) == TaskState::Stopped,
                      Texts::tr("only an interrupted or stopped task can be resumed"));
    case TaskAction::Retry:
        return unless(!isFinished, Texts::tr("a finished task is not tried again"));
    case TaskAction::Upgrade:
        return unless(isFinished && isDownloaded(record),
                      Texts::tr("only a finished task can be upgraded whose video is there "
                                "as it was downloaded"));
    case TaskAction::Rename:
        return unless(isFinished && disk::isTaken(record.FileName),
                      Texts::tr("only a finished task whose file is there can be renamed"));
    case TaskAction::Open:
        return unless(isFinished && isComplete(record), Texts::tr("its file is not there"));
    case TaskAction::Remove:
        return std::nullopt;
    default:
        return Texts::tr("the task is not at work");
    }
}

// A task that was never downloaded only knows where its thumbnail goes, which is the same folder.
QString downloadFolder(const CXMLInfo &record)
{
    for (const QString &path : {record.FileName, record.ImagePath}) {
        if (!path.isEmpty())
            return QFileInfo(path).path();
    }
    return record.SaveAsPath;
}

QString outputPath(const CXMLInfo &record)
{
    return record.IsOrgVideo == 1 ? record.SaveAsFileName : record.FileName;
}

// A finished file that its owner has changed since is still there.
bool isComplete(const CXMLInfo &record)
{
    const QFileInfo output(outputPath(record));
    if (stateOf(record) == TaskState::Finished)
        return output.isFile() && output.size() > 0;
    return isWhole(record.FileName, record) && isWhole(outputPath(record), record);
}

bool isDownloaded(const CXMLInfo &record)
{
    return isWhole(record.FileName, record);
}

bool isBegunCopy(const QString &copy, const QString &video)
{
    QFile begun(copy);
    QFile whole(video);
    if (QFileInfo(copy).isSymLink() || !begun.open(QIODevice::ReadOnly) ||
        !whole.open(QIODevice::ReadOnly))
        return false;
    constexpr qint64 blockSize = qint64{1} << 20;
    while (!begun.atEnd()) {
        const QByteArray block = begun.read(blockSize);
        if (block.isEmpty() || whole.read(block.size()) != block)
            return false;
    }
    return true;
}

bool lacksOnlyItsCopy(const CXMLInfo &record)
{
    const QString copy = record.SaveAsPath + u'/' + QFileInfo(record.FileName).fileName();
    if (record.IsOrgVideo != 1 || !isDownloaded(record) || copy != record.SaveAsFileName)
        return false;
    const QFileInfo file(copy);
    return (!file.exists() && !file.isSymLink()) || isBegunCopy(copy, record.FileName);
}

DownloadRequest requestFor(const CXMLInfo &record)
{
    DownloadRequest request;
    request.address = record.OrgWebSite;
    request.outputFolder = record.SaveAsPath;
    request.downloadFolder = downloadFolder(record);
    request.profile = *record.Profile->m_pDesc;
    request.keepSource = record.IsOrgVideo == 1;
    return request;
}

void setWishes(CXMLInfo &record, const DownloadRequest &request)
{
    record.SaveAsPath = request.outputFolder;
    record.IsOrgVideo = request.keepSource ? 1 : 0;
    *record.Profile->m_pDesc = request.profile;
}

bool mayReplace(const QString &path, qint64 size)
{
    const QFileInfo file(path);
    if (!file.exists() && !file.isSymLink())
        return true;
    return file.isFile() && !file.isSymLink() && (file.size() == 0 || file.size() == size);
}

QStringList filesOf(const CXMLInfo &record, const UnfinishedFiles &unfinished)
{
    QStringList files;
    const auto add = [&](const QString &path) {
        files << path;
        if (unfinished && !path.isEmpty())
            files << unfinished(path);
    };
    if (!record.FileName.isEmpty() && mayReplace(record.FileName, record.FileSize))
        add(record.FileName);
    if (record.IsOrgVideo == 1 && mayReplace(record.SaveAsFileName, record.FileSize))
        files << record.SaveAsFileName;
    if (record.IsOrgVideo != 1 && !record.ConvertionDesc.isEmpty())
        files << record.SaveAsFileName; // converted from the video
    add(record.ImagePath);
    files.removeDuplicates();
    files.removeIf([](const QString &path) { return path.isEmpty() || !QFileInfo(path).isFile(); });
    return files;
}

} // namespace taskrecord
