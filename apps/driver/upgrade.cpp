// A larger picture for a finished task. The library deletes the old video as soon as the site
// offers a larger one; here it is kept aside until the new one is complete.
#include "driver/downloaddriver.h"

#include "driver/taskrecord.h"
#include "video/formatentry.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace {

qint64 areaOf(const PictureSize &picture)
{
    return formatentry::frameArea(picture.width, picture.height);
}

} // namespace

int DownloadDriver::requestUpgrade(const QString &key, Task &task, Profile_Desc profile)
{
    const ControllerLock lock;
    CXMLInfo &record = *m_controller->getXMLInfo(key);
    task.former = Former{*record.Profile->m_pDesc,
                         record.IsOrgVideo,
                         {record.VideoWidth, record.VideoHeight},
                         record.VideoExt,
                         record.FileName,
                         record.BaseName,
                         record.Title,
                         record.SaveAsFileName,
                         record.SaveAsExt,
                         record.FileSize,
                         {}};
    if (!m_controller->IsReDownLoadVideo(key, &profile)) {
        task.finding = Finding::AlreadyAsLarge;
        return -1;
    }
    record.IsOrgVideo = task.former->keepsSource; // the library forgets it
    // The library does not tell whether the engine took the parse.
    return m_DownloadAllTask.contains(key) || m_mailbox.holdsEndOf(key) ? 0 : -1;
}

// The last look before the video is fetched: false when the task has ended here.
bool DownloadDriver::confirmUpgrade(const QString &key, Task &task, const PictureSize &offer)
{
    if (!task.former || !task.former->keptFile.isEmpty()) // asked for, and agreed before
        return true;
    Former &former = *task.former;
    former.keptFile = former.fileName + QLatin1String(".former");
    if (areaOf(offer) > areaOf(former.picture) &&
        !QFile::rename(former.fileName, former.keptFile)) {
        const QString file = std::exchange(former.keptFile, {});
        endFailed(key, {QStringLiteral("the old video cannot be kept as \"%1\"").arg(file),
                        QStringLiteral("Move away what is in its place.")});
        return false;
    }
    if (areaOf(offer) <= areaOf(former.picture) || !m_controller->IsBetterVideo(key)) {
        task.finding = Finding::NoneLarger;
        endPresent(key);
        return false;
    }
    if (m_settings.thumbnails)
        m_thumbnailsToGet.append(key);
    return true;
}

// A new video takes the old one's place; otherwise all is as it was.
void DownloadDriver::endUpgrade(const QString &key, Task &task, DownloadResult &result)
{
    if (!task.former)
        return;
    const Former &former = *task.former;
    const ControllerLock lock;
    CXMLInfo *record = m_controller->getXMLInfo(key);
    if (record == nullptr)
        return;
    result.former = former.picture;
    const bool larger =
        result.outcome == DownloadOutcome::Finished && task.finding == Finding::Downloaded;
    if (larger) {
        QFile::remove(former.keptFile);
    } else {
        if (!former.keptFile.isEmpty())
            QFile::rename(former.keptFile, former.fileName);
        *record->Profile->m_pDesc = former.profile;
        record->IsOrgVideo = former.keepsSource;
        record->VideoWidth = former.picture.width;
        record->VideoHeight = former.picture.height;
        record->VideoExt = former.extension;
        record->FileName = former.fileName;
        record->BaseName = former.baseName;
        record->Title = former.title;
        record->SaveAsFileName = former.copyName;
        record->SaveAsExt = former.copyExtension;
        record->FileSize = former.size;
        record->State = int(TaskState::Finished);
        record->Progress = 100;
    }
    result.picture = {record->VideoWidth, record->VideoHeight};
}
