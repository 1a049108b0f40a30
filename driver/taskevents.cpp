// What the engine's events make of the tasks, and how tasks end.
#include "driver/dispatcher.h"

#include "driver/extractor.h"
#include "driver/leftovers.h"
#include "driver/outputname.h"
#include "driver/taskrecord.h"
#include "driver/texts.h"
#include "driver/videoanswer.h"

#include <cmath>
#include <utility>

namespace {

constexpr qsizetype taskKeyLength = 32;

qint64 wholeNumber(double value)
{
    return value > 0 && value < 9e18 ? qint64(value) : 0;
}

} // namespace

void Dispatcher::handle(const EngineEvent &event)
{
    const QString taskKey = event.key.left(taskKeyLength);
    if (event.key != taskKey) {
        handleThumbnail(event);
        return;
    }
    Task *task = m_tasks.find(taskKey);
    if (task == nullptr)
        return;
    if (task->stage == Stage::Parsing)
        handleParse(*task, event);
    else if (task->stage == Stage::Downloading)
        handleVideo(*task, event);
    else if (task->stage == Stage::Copying)
        finished(*task);
}

void Dispatcher::handleThumbnail(const EngineEvent &event)
{
    if (!isTerminal(event.code))
        return;
    const QString key = event.key.left(taskKeyLength);
    m_thumbnails.remove(key);
    settleIfAtRest(key);
}

void Dispatcher::handleParse(Task &task, const EngineEvent &event)
{
    if (event.code != DOWN_STATE_PARSE_SUCCESS && event.code != DOWN_STATE_PARSE_FAIL &&
        event.code != DOWN_STATE_USER_STOP)
        return;
    if (event.code == DOWN_STATE_USER_STOP || task.stopping)
        endStopped(task);
    else if (event.code == DOWN_STATE_PARSE_FAIL)
        endFailed(task, parseReason(task, event.value));
    else
        parsed(task);
}

void Dispatcher::handleVideo(Task &task, const EngineEvent &event)
{
    switch (event.code) {
    case DOWN_STATE_DOWNLOAD_FINISH:
        finished(task);
        break;
    case DOWN_STATE_DOWNLOAD_FAIL:
        if (task.stopping)
            endStopped(task);
        else if (!refresh(task, event.value))
            endFailed(task, reasonFor(task, event.value));
        break;
    case DOWN_STATE_USER_STOP:
        endStopped(task);
        break;
    case DOWN_STATE_DISK_NO_SPACE:
        task.diskFull = true;
        break;
    case DOWN_STATE_RETRY_DOWNLOAD:
        announce([this, key = task.key, attempt = int(event.value)] {
            emit m_driver.retrying(key, attempt);
        });
        break;
    default:
        updateProgress(task, event);
    }
}

void Dispatcher::updateProgress(Task &task, const EngineEvent &event)
{
    const qint64 value = wholeNumber(event.value);
    if (event.code == DOWN_STATE_FILE_SIZE)
        task.progress.total = value;
    else if (event.code == DOWN_STATE_DOWNLOAD_PROGRESS)
        task.progress.received = value;
    else if (event.code == DOWN_STATE_DOWNLOAD_SPEED)
        task.progress.bytesPerSecond = task.progress.paused ? 0 : value;
    else if (event.code != DOWN_STATE_START_DOWNLOAD)
        return;
    m_progressed.insert(task.key);
}

void Dispatcher::announceProgress(const Task &task)
{
    if (m_progressed.remove(task.key))
        announce([this, progress = task.progress] { emit m_driver.progressed(progress); });
}

void Dispatcher::parsed(Task &task)
{
    DownloadResult result;
    const auto failure = takeAnswer(task, result);
    announce([this, key = task.key, title = task.progress.title] {
        emit m_driver.described(key, title);
    });
    if (failure) {
        endFailed(task, *failure);
    } else if (task.request.inspectOnly) {
        result.outcome = DownloadOutcome::Finished;
        result.offer = task.offer;
        end(task, result);
    } else if (!skip(task)) {
        wantThumbnail(task);
        m_tasks.moveTo(task, Stage::Ready);
    }
}

// An upgrade replaces the thumbnail too, but only once it is sure.
void Dispatcher::wantThumbnail(const Task &task)
{
    const ControllerLock lock;
    const CXMLInfo *record = controller().getXMLInfo(task.key);
    if (m_settings.thumbnails && record != nullptr && !record->ImageURL.isEmpty() &&
        !task.upgrade && !task.refreshed)
        m_thumbnailsToGet.append(task.key);
}

// Why there is nothing to download, or nothing.
std::optional<FailureReason> Dispatcher::takeAnswer(Task &task, DownloadResult &result)
{
    const ControllerLock lock;
    const CXMLInfo *record = controller().getXMLInfo(task.key);
    if (record == nullptr)
        return refusal(task.key);
    task.progress.title = record->Title;
    task.offer = VideoOffer(record->fmt_list, record->fmt_stream_map);
    result.seconds = record->Duration;
    if (task.offer.formats().isEmpty())
        return nothingOffered(record->VideoInfoText,
                              m_settings.offerAdvice.isEmpty()
                                  ? Texts::tr("Look at the page in a browser.")
                                  : m_settings.offerAdvice);
    return std::nullopt;
}

FinishedFiles Dispatcher::filesOf(const QString &key)
{
    const ControllerLock lock;
    const CXMLInfo *record = controller().getXMLInfo(key);
    if (record == nullptr)
        return {};
    return {record->FileName, record->IsOrgVideo == 1 ? record->SaveAsFileName : QString()};
}

void Dispatcher::finished(Task &task)
{
    if (const auto reason = missingFile(filesOf(task.key))) {
        endFailed(task, *reason);
        return;
    }
    if (task.stage == Stage::Copying)
        dropUnfinished(task.key);
    DownloadResult result;
    result.outcome = DownloadOutcome::Finished;
    if (task.wanted)
        overwrite(task, *task.wanted, result);
    const FinishedFiles files = filesOf(task.key);
    result.path = files.copy.isEmpty() ? files.video : files.copy;
    end(task, result);
}

// Stream addresses do not keep; the page's are fresh. Comes before what was never begun.
bool Dispatcher::refresh(Task &task, double code)
{
    if (task.refreshed || !m_settings.hasExpired || !m_settings.hasExpired(code))
        return false;
    task.refreshed = true; // keeps its name meanwhile
    task.progress.paused = false;
    m_tasks.moveTo(task, Stage::Waiting, TaskTable::Place::First);
    return true;
}

void Dispatcher::dropThumbnail(const QString &key)
{
    m_thumbnailsToGet.removeOne(key);
    if (m_thumbnails.contains(key))
        m_port.stopThumbnail(key);
}

void Dispatcher::stopAtWork(Task &task)
{
    task.stopping = true;
    m_port.stop(task.key);
    dropThumbnail(task.key);
}

FailureReason Dispatcher::parseReason(const Task &task, double code) const
{
    const bool hasNone = m_settings.hasNoVideoInfo && m_settings.hasNoVideoInfo(code);
    const QString missing =
        hasNone && m_settings.missingExtractor ? m_settings.missingExtractor() : QString();
    FailureReason reason = reasonFor(task, code);
    return missing.isEmpty() ? reason : extractor::withoutProgram(reason.cause, missing);
}

FailureReason Dispatcher::reasonFor(const Task &task, double code) const
{
    if (task.diskFull)
        return {Texts::tr("the disk of \"%1\" is full").arg(task.request.downloadFolder),
                Texts::tr("Free some space, or choose another folder.")};
    const auto text = [code](const std::function<QString(double)> &of) {
        return of ? of(code) : QString();
    };
    const QString cause = text(m_settings.failureText);
    return {cause.isEmpty() ? Texts::tr("the transfer failed (code %1)").arg(code) : cause,
            text(m_settings.failureAdvice)};
}

void Dispatcher::endPresent(Task &task)
{
    DownloadResult result;
    result.outcome = DownloadOutcome::Finished;
    bool hasEnded = true;
    {
        const ControllerLock lock;
        if (const CXMLInfo *record = controller().getXMLInfo(task.key)) {
            hasEnded = taskrecord::stateOf(*record) == TaskState::Finished;
            task.progress.title = record->Title;
            result.path = taskrecord::outputPath(*record);
            result.seconds = record->Duration;
        }
    }
    if (!task.request.inspectOnly) {
        if (!hasEnded)
            dropUnfinished(task.key);
        end(task, result);
    } else if (task.offer.formats().isEmpty()) {
        endFailed(task, {Texts::tr("the video is in the list, but the site has not yet said "
                                   "what it offers"),
                         {}});
    } else {
        result.offer = task.offer;
        result.path.clear();
        end(task, result);
    }
}

// Of a download that was to replace the video, and was stopped: the video is whole, so nobody
// continues that.
void Dispatcher::dropUnfinished(const QString &key)
{
    const QString video = filesOf(key).video;
    if (m_settings.unfinishedFiles && !video.isEmpty())
        leftovers::remove({{}, m_settings.unfinishedFiles(video), {}, {}});
}

void Dispatcher::endFailed(Task &task, const FailureReason &reason)
{
    DownloadResult result;
    result.outcome = DownloadOutcome::Failed;
    result.failure = reason;
    end(task, result);
}

void Dispatcher::endStopped(Task &task)
{
    DownloadResult result;
    result.outcome = DownloadOutcome::Stopped;
    end(task, result);
}

// The one place where a task ends.
void Dispatcher::end(Task &task, DownloadResult result)
{
    announceProgress(task);
    Task ended = m_tasks.take(task);
    result.key = ended.key;
    result.address = ended.request.address;
    result.title = ended.progress.title;
    result.finding = ended.finding;
    if (result.outcome != DownloadOutcome::Finished) {
        releaseName(ended);
        dropThumbnail(ended.key);
    }
    if (ended.request.inspectOnly)
        dropInspected(ended);
    recordEnd(ended, result.outcome);
    endUpgrade(ended, result);
    announce([this, result] {
        if (result.outcome == DownloadOutcome::Skipped)
            dropSkipped(result.key);
        emit m_driver.ended(result);
    });
}
