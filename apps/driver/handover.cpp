// Handing work to the controller, never more of it than there are slots.
#include "driver/downloaddriver.h"

#include "driver/formatchoice.h"
#include "driver/outputname.h"
#include "driver/taskrecord.h"

#include <algorithm>

namespace {

constexpr qsizetype sharedSlots = 3; // of parses and thumbnails together

bool fitsField(const QString &text, std::size_t field)
{
    return text.toLocal8Bit().size() < qsizetype(field);
}

} // namespace

void DownloadDriver::handOver()
{
    while (handOverOne()) {
    }
}

// Tasks that were begun come first: their stream addresses do not keep. For the same reason no
// more is parsed ahead than can soon be downloaded.
bool DownloadDriver::handOverOne()
{
    if (!m_ready.isEmpty() && m_videos.size() < m_settings.videoLimit) {
        sendVideo(m_ready.takeFirst());
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
        m_controller->Stop(key, false); // leaves the waiting list
        m_controller->ReleaseLock(key); // and gives the slot back
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
    if (!prepareVideo(key))
        return;
    const QString folder = m_tasks[key].request.downloadFolder;
    const auto send = [&] { return m_controller->DownloadVideo(key); };
    if (!watchedIn(folder, key, send).atWork) {
        endFailed(key, refusal(key));
        return;
    }
    m_videos.insert(key);
    m_recordsChanged = true;
}

// Settles format and name, so that the library's choice gives a file that suits the wish and stands
// in nobody's way.
bool DownloadDriver::prepareVideo(const QString &key)
{
    Task &task = m_tasks[key];
    const DownloadRequest &request = task.request;
    ChosenFormat chosen;
    OutputPlace place;
    place.title = task.progress.title;
    place.key = key;
    place.downloadFolder = request.downloadFolder;
    place.copyFolder = request.outputFolder;
    place.copies = request.keepSource;
    {
        const ControllerLock lock;
        CXMLInfo *record = m_controller->getXMLInfo(key);
        if (record == nullptr) {
            endFailed(key, refusal(key));
            return false;
        }
        FormatWish wish = formatchoice::settled(request, record->fmt_list, record->fmt_stream_map);
        chosen = formatchoice::chosen(wish, record->fmt_list, record->fmt_stream_map);
        place.extension = chosen.extension;
        if (wish.byProfile) // else the wish stays open, for when the task is gone on with
            m_controller->SaveProfile(key, &wish.profile);
        m_controller->m_bUseProfileFmt = wish.byProfile;
        if (!nameIsClaimed(*record)) {
            place.ownVideo = record->FileName;
            place.ownCopy = record->SaveAsFileName;
            place.ownSize = record->FileSize;
        }
    }
    return confirmUpgrade(key, task, {chosen.width, chosen.height}) && nameVideo(key, place);
}

bool DownloadDriver::nameVideo(const QString &key, const OutputPlace &place)
{
    const auto name = chooseOutputName(place);
    if (const auto *reason = std::get_if<FailureReason>(&name)) {
        endFailed(key, *reason);
        return false;
    }
    const auto &chosen = std::get<OutputName>(name);
    m_tasks[key].reservedCopy = chosen.reservedCopy;
    const ControllerLock lock;
    m_ReDownLoadList.removeAll(key);
    if (chosen.isOwn) // the library then writes to the name as it is
        m_ReDownLoadList.append(key);
    if (CXMLInfo *record = m_controller->getXMLInfo(key)) {
        record->Title = chosen.title;
        record->ConvertionDesc = QStringLiteral(""); // the new video is not converted yet
    }
    return true;
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
