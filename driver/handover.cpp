// Handing work to the controller, never more of it than there are slots.
#include "driver/dispatcher.h"

#include "driver/taskrecord.h"
#include "driver/texts.h"

#include <algorithm>
#include <variant>

namespace {

using Answer = ControllerPort::Answer;

constexpr qsizetype sharedSlots = 3; // of parses and thumbnails together

bool fitsField(const QString &text, std::size_t field)
{
    return text.toLocal8Bit().size() < qsizetype(field);
}

} // namespace

// Several at once, so that their names reach the disk together.
void Dispatcher::nameVideos()
{
    while (hasVideoSlot() && m_tasks.count(Stage::Ready) > 0) {
        Task &task = *m_tasks.in(Stage::Ready).first();
        if (nameVideo(task))
            m_tasks.moveTo(task, Stage::Named);
    }
}

void Dispatcher::handOver()
{
    while (handOverOne()) {
    }
}

// Tasks that were begun come first: their stream addresses do not keep. For the same reason no
// more is parsed ahead than can soon be downloaded.
bool Dispatcher::handOverOne()
{
    if (m_tasks.count(Stage::Named) > 0) {
        sendVideo(*m_tasks.in(Stage::Named).first());
        return true;
    }
    if (!hasSharedSlot())
        return false;
    if (!m_thumbnailsToGet.isEmpty()) {
        sendThumbnail(m_thumbnailsToGet.takeFirst());
        return true;
    }
    Task *const task = m_tasks.count(Stage::Ready) < m_videoLimit ? nextToParse() : nullptr;
    if (task != nullptr)
        sendParse(*task);
    return task != nullptr;
}

// The thumbnail of an ended task may still be at work when the task is added again.
Task *Dispatcher::nextToParse() const
{
    const QList<Task *> &waiting = m_tasks.in(Stage::Waiting);
    const auto next = std::find_if(waiting.cbegin(), waiting.cend(), [this](const Task *task) {
        return task->refreshed || !m_thumbnails.contains(task->key);
    });
    return next == waiting.cend() ? nullptr : *next;
}

bool Dispatcher::hasVideoSlot() const
{
    return m_tasks.count(Stage::Downloading) + m_tasks.count(Stage::Named) < m_videoLimit;
}

bool Dispatcher::hasSharedSlot() const
{
    return m_tasks.count(Stage::Parsing) + m_thumbnails.size() < sharedSlots;
}

void Dispatcher::sendParse(Task &task)
{
    const bool upgrades = task.request.upgrade && !task.refreshed;
    const Answer answer = upgrades ? sendUpgradeParse(task) : m_port.parse(task.key, task.request);
    if (answer == Answer::NothingToDo) {
        task.finding = Finding::AlreadyAsLarge;
        endPresent(task);
    } else if (answer == Answer::Refused) {
        endFailed(task, refusal(task.key));
    } else {
        setState(task, TaskState::Running);
        m_tasks.moveTo(task, Stage::Parsing);
        announce([this, key = task.key] { emit m_driver.started(key); });
    }
}

void Dispatcher::sendVideo(Task &task)
{
    const auto reserved = reserve(*task.name);
    if (const auto *reason = std::get_if<FailureReason>(&reserved)) {
        endFailed(task, *reason);
    } else if (std::get<Reservation>(reserved) == Reservation::Taken) {
        m_tasks.moveTo(task, Stage::Ready, TaskTable::Place::First);
    } else if (m_port.download(task.key, task.request.downloadFolder, task.byProfile) !=
               Answer::Sent) {
        endFailed(task, refusal(task.key));
    } else {
        m_tasks.moveTo(task, Stage::Downloading);
        m_changed.insert(task.key);
    }
}

void Dispatcher::sendThumbnail(const QString &key)
{
    if (m_port.downloadThumbnail(key) == Answer::Sent)
        m_thumbnails.insert(key);
}

// The controller only says "refused": the likely reason is a text that the engine cannot carry.
FailureReason Dispatcher::refusal(const QString &key)
{
    const ControllerLock lock;
    const CXMLInfo *record = controller().getXMLInfo(key);
    if (record != nullptr && !fitsField(record->FileName, sizeof tagTaskInfo::szSavePath))
        return {Texts::tr("the path of the file is too long: \"%1\"").arg(record->FileName),
                Texts::tr("Choose a folder with a shorter path.")};
    if (record != nullptr && !fitsField(record->DownLoadURL, sizeof tagTaskInfo::szDownloadURL))
        return {Texts::tr("the site's address of the video is too long"),
                Texts::tr("Choose another format.")};
    return {Texts::tr("the download engine did not take the request"),
            Texts::tr("Try again later.")};
}
