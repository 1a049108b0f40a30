// What the engine's events make of the tasks, and how tasks end.
#include "driver/downloaddriver.h"

#include "driver/formatchoice.h"
#include "driver/outputname.h"
#include "driver/plaintext.h"

#include <QFile>

#include <cmath>
#include <utility>

namespace {

constexpr qsizetype taskKeyLength = 32;

qint64 wholeNumber(double value)
{
    return value > 0 && value < 9e18 ? qint64(value) : 0;
}

// The response's own word on why there is nothing to download; empty when it has none.
QString siteReason(const QString &videoInfoText)
{
    const QLatin1String key("reason=");
    for (const QString &line : videoInfoText.split(u'\n')) {
        if (line.startsWith(key))
            return plaintext::withoutControls(line.mid(key.size())).trimmed();
    }
    return {};
}

FailureReason nothingOffered(const QString &videoInfoText, const QString &advice)
{
    const QString reason = siteReason(videoInfoText);
    return {reason.isEmpty() ? QStringLiteral("the site offers no formats of this video")
                             : QStringLiteral("the site refuses this video: %1").arg(reason),
            advice};
}

} // namespace

void DownloadDriver::handle(const EngineEvent &event)
{
    const QString taskKey = event.key.left(taskKeyLength);
    if (event.key != taskKey) {
        handleThumbnail(event);
        return;
    }
    const auto task = m_tasks.find(taskKey);
    if (task == m_tasks.end())
        return;
    if (m_parsing.contains(taskKey))
        handleParse(taskKey, event);
    else if (m_videos.contains(taskKey))
        handleVideo(taskKey, *task, event);
    else if (m_copying.remove(taskKey))
        finished(taskKey);
}

void DownloadDriver::handleThumbnail(const EngineEvent &event)
{
    if (!isTerminal(event.code))
        return;
    const QString key = event.key.left(taskKeyLength);
    m_thumbnails.remove(key);
    settleIfAtRest(key);
}

void DownloadDriver::handleParse(const QString &key, const EngineEvent &event)
{
    if (event.code != DOWN_STATE_PARSE_SUCCESS && event.code != DOWN_STATE_PARSE_FAIL &&
        event.code != DOWN_STATE_USER_STOP)
        return;
    m_parsing.remove(key);
    if (event.code == DOWN_STATE_USER_STOP || m_tasks[key].stopping)
        endStopped(key);
    else if (event.code == DOWN_STATE_PARSE_FAIL)
        endFailed(key, reasonFor(m_tasks[key], event.value));
    else
        parsed(key);
}

void DownloadDriver::handleVideo(const QString &key, Task &task, const EngineEvent &event)
{
    switch (event.code) {
    case DOWN_STATE_DOWNLOAD_FINISH:
        m_videos.remove(key);
        finished(key);
        break;
    case DOWN_STATE_DOWNLOAD_FAIL:
        m_videos.remove(key);
        if (task.stopping)
            endStopped(key);
        else if (!refresh(key, task, event.value))
            endFailed(key, reasonFor(task, event.value));
        break;
    case DOWN_STATE_USER_STOP:
        m_videos.remove(key);
        endStopped(key);
        break;
    case DOWN_STATE_DISK_NO_SPACE:
        task.diskFull = true;
        break;
    case DOWN_STATE_RETRY_DOWNLOAD:
        tell([this, key, attempt = int(event.value)] { emit retrying(key, attempt); });
        break;
    default:
        noteProgress(task, event);
    }
}

void DownloadDriver::noteProgress(Task &task, const EngineEvent &event)
{
    const qint64 value = wholeNumber(event.value);
    if (event.code == DOWN_STATE_FILE_SIZE)
        task.progress.total = value;
    else if (event.code == DOWN_STATE_DOWNLOAD_PROGRESS)
        task.progress.received = value;
    else if (event.code == DOWN_STATE_DOWNLOAD_SPEED)
        task.progress.bytesPerSecond = value;
    else if (event.code != DOWN_STATE_START_DOWNLOAD)
        return;
    m_progressed.insert(task.progress.key);
}

void DownloadDriver::tellProgress(const QString &key)
{
    if (m_progressed.remove(key))
        tell([this, progress = m_tasks.value(key).progress] { emit progressed(progress); });
}

void DownloadDriver::parsed(const QString &key)
{
    Task &task = m_tasks[key];
    std::optional<FailureReason> failure;
    bool hasThumbnail = false;
    {
        const ControllerLock lock;
        const CXMLInfo *record = m_controller->getXMLInfo(key);
        if (record == nullptr) {
            failure = refusal(key);
        } else {
            task.progress.title = record->Title;
            hasThumbnail = !record->ImageURL.isEmpty();
            if (formatchoice::offered(record->fmt_list, record->fmt_stream_map).isEmpty())
                failure = nothingOffered(record->VideoInfoText, m_settings.offerAdvice);
        }
    }
    tell([this, key, title = task.progress.title] { emit described(key, title); });
    if (failure) {
        endFailed(key, *failure);
    } else if (task.request.inspectOnly) {
        DownloadResult result;
        result.outcome = DownloadOutcome::Finished;
        end(key, result);
    } else {
        // An upgrade replaces the thumbnail too, but only once it is sure.
        if (m_settings.thumbnails && hasThumbnail && !task.upgrade && !task.refreshed)
            m_thumbnailsToGet.append(key);
        m_ready.append(key);
    }
}

void DownloadDriver::finished(const QString &key)
{
    FinishedFiles files;
    DownloadResult result;
    result.outcome = DownloadOutcome::Finished;
    {
        const ControllerLock lock;
        if (const CXMLInfo *record = m_controller->getXMLInfo(key)) {
            files.video = record->FileName;
            files.copy = record->IsOrgVideo == 1 ? record->SaveAsFileName : QString();
        }
    }
    result.path = files.copy.isEmpty() ? files.video : files.copy;
    if (const auto reason = missingFile(files))
        endFailed(key, *reason);
    else
        end(key, result);
}

// Stream addresses do not keep; the page's are fresh. Comes before what was never begun.
bool DownloadDriver::refresh(const QString &key, Task &task, double code)
{
    if (task.refreshed || !m_settings.hasExpired || !m_settings.hasExpired(code))
        return false;
    task.refreshed = true; // keeps its name meanwhile
    m_waiting.prepend(key);
    return true;
}

void DownloadDriver::dropThumbnail(const QString &key)
{
    m_thumbnailsToGet.removeOne(key);
    if (m_thumbnails.contains(key))
        m_controller->Stop(key + u'1', false);
}

void DownloadDriver::stopAtWork(const QString &key)
{
    m_tasks[key].stopping = true;
    m_controller->Stop(key, false);
    dropThumbnail(key);
}

FailureReason DownloadDriver::reasonFor(const Task &task, double code) const
{
    if (task.diskFull)
        return {QStringLiteral("the disk of \"%1\" is full").arg(task.request.downloadFolder),
                QStringLiteral("Free some space, or choose another folder.")};
    const auto text = [code](const std::function<QString(double)> &of) {
        return of ? of(code) : QString();
    };
    const QString cause = text(m_settings.failureText);
    return {cause.isEmpty() ? QStringLiteral("the transfer failed (code %1)").arg(code) : cause,
            text(m_settings.failureAdvice)};
}

void DownloadDriver::endFailed(const QString &key, const FailureReason &reason)
{
    DownloadResult result;
    result.outcome = DownloadOutcome::Failed;
    result.failure = reason;
    end(key, result);
}

void DownloadDriver::endStopped(const QString &key)
{
    DownloadResult result;
    result.outcome = DownloadOutcome::Stopped;
    end(key, result);
}

void DownloadDriver::end(const QString &key, DownloadResult result)
{
    tellProgress(key);
    Task task = m_tasks.take(key);
    result.key = key;
    result.address = task.request.address;
    result.title = task.progress.title;
    if (result.outcome != DownloadOutcome::Finished) {
        releaseName(task);
        dropThumbnail(key);
    }
    noteEnd(key, task, result.outcome);
    endUpgrade(key, task, result);
    tell([this, result] { emit ended(result); });
}
