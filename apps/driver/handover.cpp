// Handing work to the controller, never more of it than there are slots.
#include "driver/downloaddriver.h"

#include "driver/taskrecord.h"

#include <algorithm>

namespace {

constexpr qsizetype sharedSlots = 3; // of parses and thumbnails together

bool fitsField(const QString &text, std::size_t field)
{
    return text.toLocal8Bit().size() < qsizetype(field);
}

} // namespace

// Several at once, so that their names reach the disk together.
void DownloadDriver::nameVideos()
{
    while (hasVideoSlot() && !m_ready.isEmpty()) {
        const QString key = m_ready.takeFirst();
        if (nameVideo(key))
            m_named.append(key);
    }
}

void DownloadDriver::handOver()
{
    while (handOverOne()) {
    }
}

// Tasks that were begun come first: their stream addresses do not keep. For the same reason no
// more is parsed ahead than can soon be downloaded.
bool DownloadDriver::handOverOne()
{
    if (!m_named.isEmpty()) {
        sendVideo(m_named.takeFirst());
        return true;
    }
    if (!hasSharedSlot())
        return false;
    if (!m_thumbnailsToGet.isEmpty()) {
        sendThumbnail(m_thumbnailsToGet.takeFirst());
        return true;
    }
    if (m_ready.size() >= m_settings.videoLimit)
        return false;
    // The thumbnail of an ended task may still be at work when the task is added again.
    const auto next =
        std::find_if(m_waiting.cbegin(), m_waiting.cend(), [this](const QString &key) {
            return m_tasks[key].refreshed || !m_thumbnails.contains(key);
        });
    if (next == m_waiting.cend())
        return false;
    sendParse(m_waiting.takeAt(next - m_waiting.cbegin()));
    return true;
}

bool DownloadDriver::hasVideoSlot() const
{
    return m_videos.size() + m_named.size() < m_settings.videoLimit;
}

bool DownloadDriver::hasSharedSlot() const
{
    return m_parsing.size() + m_thumbnails.size() < sharedSlots;
}

// The controller answers 0 also when it sent nothing. While the lock is held, a request that was
// sent cannot leave the list, except when the engine ended it from inside the call.
DownloadDriver::Sent DownloadDriver::watched(const QString &key, const std::function<int()> &send)
{
    const ControllerLock lock;
    const int result = send();
    const bool atWork =
        result != -1 && (m_DownloadAllTask.contains(key) || m_mailbox.holdsEndOf(key));
    if (result != -1 && !atWork) {
        for (QStringList *waiting :
             {&m_controller->m_ParseWaitList, &m_controller->m_DownloadWaitList,
              &m_controller->m_ImageWaitList})
            waiting->removeAll(key);
        m_controller->ReleaseLock(key); // gives the slot back
    }
    return {result, atWork};
}

// The controller has one downloads folder, and takes it from here at each call that names a file.
DownloadDriver::Sent DownloadDriver::watchedIn(const QString &folder, const QString &key,
                                               const std::function<int()> &send)
{
    const ControllerLock lock;
    m_controller->m_strDownloadPath = folder;
    return watched(key, send);
}

void DownloadDriver::sendParse(const QString &key)
{
    const DownloadRequest request = m_tasks[key].request;
    const Sent sent = watched(key, [&] { return requestParse(key, request); });
    if (!sent.atWork) {
        if (m_tasks[key].finding == Finding::Downloaded)
            endFailed(key, refusal(key));
        else
            endPresent(key);
        return;
    }
    setState(key, TaskState::Running);
    m_parsing.insert(key);
    tell([this, key] { emit started(key); });
}

void DownloadDriver::sendVideo(const QString &key)
{
    const Task &task = m_tasks[key];
    const auto reserved = reserve(*task.name);
    if (const auto *reason = std::get_if<FailureReason>(&reserved)) {
        endFailed(key, *reason);
        return;
    }
    if (std::get<Reservation>(reserved) == Reservation::Taken) {
        m_ready.prepend(key);
        return;
    }
    const auto send = [&] {
        const ControllerLock lock;
        m_controller->m_bUseProfileFmt = task.byProfile;
        m_ReDownLoadList.append(key); // the library then writes to the name as it is
        return m_controller->DownloadVideo(key);
    };
    if (!watchedIn(task.request.downloadFolder, key, send).atWork) {
        endFailed(key, refusal(key));
        return;
    }
    m_videos.insert(key);
    m_changed.insert(key);
}

void DownloadDriver::sendThumbnail(const QString &key)
{
    const ControllerLock lock;
    const CXMLInfo *record = m_controller->getXMLInfo(key);
    if (record == nullptr)
        return;
    const auto send = [&] { return m_controller->DoDownloadVideo(key, false); };
    if (watchedIn(taskrecord::downloadFolder(*record), key + u'1', send).atWork)
        m_thumbnails.insert(key);
}

// The controller only says "refused": the likely reason is a text that the engine cannot carry.
FailureReason DownloadDriver::refusal(const QString &key)
{
    const ControllerLock lock;
    const CXMLInfo *record = m_controller->getXMLInfo(key);
    if (record != nullptr && !fitsField(record->FileName, sizeof tagTaskInfo::szSavePath))
        return {QStringLiteral("the path of the file is too long: \"%1\"").arg(record->FileName),
                QStringLiteral("Choose a folder with a shorter path.")};
    if (record != nullptr && !fitsField(record->DownLoadURL, sizeof tagTaskInfo::szDownloadURL))
        return {QStringLiteral("the site's address of the video is too long"),
                QStringLiteral("Choose another format.")};
    return {QStringLiteral("the download engine did not take the request"),
            QStringLiteral("Try again later.")};
}
