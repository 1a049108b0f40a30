// What the driver reads from, and writes into, the records of its tasks.
#include "driver/dispatcher.h"

#include "driver/addresscheck.h"
#include "driver/historykeeper.h"
#include "driver/taskrecord.h"

#include <QFile>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

int percentOf(const DownloadProgress &progress)
{
    const double part = double(progress.received) / double(progress.total);
    return std::clamp(int(part * 100), 0, 100);
}

CXMLInfo *newRecord(const QString &key, const DownloadRequest &request)
{
    auto *record = new CXMLInfo(nullptr);
    record->MD5Code = key;
    record->OrgWebSite = request.address;
    // Where the thumbnail will be: so a task that is never begun keeps its downloads folder too.
    record->ImagePath = request.downloadFolder + u'/' + key + QLatin1String("1.jpg");
    return record;
}

} // namespace

// Where the task begins its way.
Stage Dispatcher::enlist(Task &task)
{
    const DownloadRequest &request = task.request;
    if (request.inspectOnly)
        return Stage::Waiting;
    const ControllerLock lock;
    CXMLInfo *record = controller().getXMLInfo(task.key);
    if (record != nullptr && request.upgrade)
        return Stage::Waiting;
    if (record != nullptr && !request.again && taskrecord::isComplete(*record))
        return Stage::Present;
    if (record == nullptr)
        record = controller().m_pHistory->Add(newRecord(task.key, request));
    else if (!taskrecord::isInterrupted(*record) || !record->FileName.isEmpty()) // it was begun
        task.former = {taskrecord::stateOf(*record), taskrecord::requestFor(*record)};
    taskrecord::setWishes(*record, request);
    record->State = int(TaskState::Waiting);
    m_changed.insert(task.key);
    const bool copies = !request.again && taskrecord::lacksOnlyItsCopy(*record);
    return copies ? Stage::Copying : Stage::Waiting;
}

// What is only looked at becomes what is wanted, with the answer that it already waits for.
void Dispatcher::adopt(Task &inspection, const DownloadRequest &request)
{
    inspection.request = request;
    if (inspection.stage == Stage::Waiting || inspection.stage == Stage::Present) {
        m_tasks.moveTo(inspection, enlist(inspection));
        if (inspection.stage == Stage::Copying)
            startCopy(inspection.key);
    } else if (inspection.stage == Stage::Parsing) {
        const ControllerLock lock;
        if (CXMLInfo *record = controller().getXMLInfo(inspection.key))
            taskrecord::setWishes(*record, request);
        setState(inspection, TaskState::Running);
    }
    wake();
}

// A large copy takes a while, and the library makes it on the thread that asks for it.
void Dispatcher::startCopy(const QString &key)
{
    m_copiers.start([this, key] {
        m_port.copy(key);
        EngineMailbox::onState(&m_port.mailbox(), key.toLatin1().constData(),
                               DOWN_STATE_DOWNLOAD_FINISH, 0, FILE_TYPE_VIDEO);
    });
}

void Dispatcher::setState(const Task &task, TaskState state)
{
    const ControllerLock lock;
    CXMLInfo *record = controller().getXMLInfo(task.key);
    if (record == nullptr || task.request.inspectOnly)
        return;
    record->State = int(state);
    m_changed.insert(task.key);
}

// A task of the list is not parsed for an inspection, which would cost it its record.
bool Dispatcher::answerFromRecord(Task &task)
{
    const ControllerLock lock;
    const CXMLInfo *record = controller().getXMLInfo(task.key);
    if (record == nullptr)
        return false;
    task.progress.title = record->Title;
    task.offer = VideoOffer(record->fmt_list, record->fmt_stream_map);
    return true;
}

void Dispatcher::dropInspected(const Task &task)
{
    const ControllerLock lock;
    std::unique_ptr<CXMLInfo> record(controller().getXMLInfo(task.key));
    if (record && taskrecord::stateOf(*record) == TaskState::None)
        controller().remove(task.key, false);
    else
        static_cast<void>(record.release()); // the list's
}

void Dispatcher::recordEnd(const Task &task, DownloadOutcome outcome)
{
    m_port.forget(task.key);
    const ControllerLock lock;
    CXMLInfo *record = controller().getXMLInfo(task.key);
    if (record == nullptr || task.request.inspectOnly || addressProblem(task.request.address))
        return;
    if (outcome == DownloadOutcome::Skipped) {
        leaveSkipped(task);
        return;
    }
    const bool finished = outcome == DownloadOutcome::Finished;
    const bool failed = outcome == DownloadOutcome::Failed;
    record->State = int(finished ? TaskState::Finished
                        : failed ? TaskState::Failed
                                 : TaskState::Stopped);
    if (finished)
        record->Progress = 100;
    else if (task.progress.total > 0)
        record->Progress = percentOf(task.progress);
    m_changed.insert(task.key);
}

// A task is at rest when neither its video nor its thumbnail is at work.
void Dispatcher::settleIfAtRest(const QString &key)
{
    const bool isAtWork = m_tasks.find(key) != nullptr || m_thumbnails.contains(key) ||
                          m_thumbnailsToGet.contains(key);
    if (m_keeper != nullptr && !isAtWork)
        m_keeper->settle(key);
}
