// A larger picture for a finished task: the dispatcher's part of it; see upgrade.h.
#include "driver/dispatcher.h"

#include "driver/historykeeper.h"
#include "driver/texts.h"

#include <utility>

ControllerPort::Answer Dispatcher::sendUpgradeParse(Task &task)
{
    {
        const ControllerLock lock;
        const CXMLInfo *record = controller().getXMLInfo(task.key);
        if (record == nullptr)
            return ControllerPort::Answer::Refused;
        task.upgrade.emplace(*record);
    }
    return m_port.parseForUpgrade(task.key, task.request.profile);
}

// The last look before the video is fetched: false when the task has ended here.
bool Dispatcher::confirmUpgrade(Task &task, const PictureSize &offered)
{
    if (!task.upgrade || task.upgrade->isSetAside()) // not asked for, or agreed before
        return true;
    const bool isLarger = task.upgrade->isLarger(offered);
    const auto obstacle = isLarger ? setAsideForUpgrade(task, *task.upgrade) : std::nullopt;
    if (obstacle) {
        endFailed(task, *obstacle);
        return false;
    }
    if (!isLarger || !m_port.acceptUpgrade(task.key)) {
        task.finding = Finding::NoneLarger;
        endPresent(task);
        return false;
    }
    if (m_settings.thumbnails)
        m_thumbnailsToGet.append(task.key);
    return true;
}

std::optional<FailureReason> Dispatcher::setAsideForUpgrade(const Task &task, Upgrade &upgrade)
{
    if (m_keeper != nullptr)
        m_keeper->beginUpgrade(task.key, upgrade.files());
    const auto obstacle = upgrade.setAside();
    if (!obstacle)
        return std::nullopt;
    return FailureReason{Texts::tr("the old video cannot be kept as \"%1\"").arg(*obstacle),
                         Texts::tr("Move away what is in its place.")};
}

void Dispatcher::recordUpgradeNames(const Task &task)
{
    if (!task.upgrade || m_keeper == nullptr)
        return;
    UpgradeFiles files = task.upgrade->files();
    files.fresh = {task.name->video};
    if (!task.name->copy.isEmpty())
        files.fresh << task.name->copy;
    m_keeper->beginUpgrade(task.key, files);
}

// A new video takes the old one's place; otherwise all is as it was. The files come first: the
// record says what became of them.
void Dispatcher::endUpgrade(Task &task, DownloadResult &result)
{
    if (!task.upgrade)
        return;
    const bool larger =
        result.outcome == DownloadOutcome::Finished && task.finding == Finding::Downloaded;
    const auto left = larger ? task.upgrade->commit() : task.upgrade->rollBack();
    {
        const ControllerLock lock;
        if (CXMLInfo *record = controller().getXMLInfo(task.key)) {
            if (!larger)
                task.upgrade->restore(*record);
            result.former = task.upgrade->formerPicture();
            result.picture = {record->VideoWidth, record->VideoHeight};
        }
    }
    if (left && !larger) {
        result.outcome = DownloadOutcome::Failed;
        result.failure = {
            Texts::tr("the old video could not be put back; it is \"%1\" now").arg(*left),
            Texts::tr("Make its folder writable, and rename the file.")};
    }
    if (m_keeper != nullptr)
        m_keeper->endUpgrade(task.key);
}
