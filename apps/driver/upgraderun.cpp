// A larger picture for a finished task: the driver's part of it; see upgrade.h.
#include "driver/downloaddriver.h"

#include "driver/historykeeper.h"

#include <utility>

// The engine may answer from inside the request: the record is looked up anew behind it.
int DownloadDriver::requestUpgrade(const QString &key, Task &task, Profile_Desc profile)
{
    const ControllerLock lock;
    task.upgrade.emplace(*m_controller->getXMLInfo(key));
    if (!m_controller->IsReDownLoadVideo(key, &profile)) {
        task.finding = Finding::AlreadyAsLarge;
        return -1;
    }
    if (CXMLInfo *record = m_controller->getXMLInfo(key))
        record->IsOrgVideo = task.upgrade->keepsSource(); // the library forgets it
    // The library does not tell whether the engine took the parse.
    return m_DownloadAllTask.contains(key) || m_mailbox.holdsEndOf(key) ? 0 : -1;
}

// The last look before the video is fetched: false when the task has ended here.
bool DownloadDriver::confirmUpgrade(const QString &key, const PictureSize &offer)
{
    Task &task = m_tasks[key];
    if (!task.upgrade || task.upgrade->isSetAside()) // not asked for, or agreed before
        return true;
    const bool isLarger = task.upgrade->isLarger(offer);
    if (isLarger && !setAsideForUpgrade(key, *task.upgrade))
        return false;
    if (!isLarger || !m_controller->IsBetterVideo(key)) {
        task.finding = Finding::NoneLarger;
        endPresent(key);
        return false;
    }
    if (m_settings.thumbnails)
        m_thumbnailsToGet.append(key);
    return true;
}

bool DownloadDriver::setAsideForUpgrade(const QString &key, Upgrade &upgrade)
{
    if (m_keeper != nullptr)
        m_keeper->beginUpgrade(key, upgrade.files());
    const auto obstacle = upgrade.setAside();
    if (!obstacle)
        return true;
    endFailed(key, {QStringLiteral("the old video cannot be kept as \"%1\"").arg(*obstacle),
                    QStringLiteral("Move away what is in its place.")});
    return false;
}

void DownloadDriver::noteUpgradeNames(const QString &key, const Task &task)
{
    if (!task.upgrade || m_keeper == nullptr)
        return;
    UpgradeFiles files = task.upgrade->files();
    files.fresh = {task.name->video};
    if (!task.name->copy.isEmpty())
        files.fresh << task.name->copy;
    m_keeper->beginUpgrade(key, files);
}

// A new video takes the old one's place; otherwise all is as it was. The files come first: the
// record tells what became of them.
void DownloadDriver::endUpgrade(const QString &key, Task &task, DownloadResult &result)
{
    if (!task.upgrade)
        return;
    const bool larger =
        result.outcome == DownloadOutcome::Finished && task.finding == Finding::Downloaded;
    const auto left = larger ? task.upgrade->commit() : task.upgrade->rollBack();
    {
        const ControllerLock lock;
        if (CXMLInfo *record = m_controller->getXMLInfo(key)) {
            if (!larger)
                task.upgrade->restore(*record);
            result.former = task.upgrade->formerPicture();
            result.picture = {record->VideoWidth, record->VideoHeight};
        }
    }
    if (left && !larger) {
        result.outcome = DownloadOutcome::Failed;
        result.failure = {
            QStringLiteral("the old video could not be put back; it is \"%1\" now").arg(*left),
            QStringLiteral("Make its folder writable, and rename the file.")};
    }
    if (m_keeper != nullptr)
        m_keeper->endUpgrade(key);
}
