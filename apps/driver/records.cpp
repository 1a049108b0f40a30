// What the driver reads from, and writes into, the records of its tasks.
#include "driver/downloaddriver.h"

#include "driver/addresscheck.h"
#include "driver/historykeeper.h"
#include "driver/taskrecord.h"

#include <QFile>

#include <algorithm>
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

void setWishes(CXMLInfo &record, const DownloadRequest &request)
{
    record.SaveAsPath = request.outputFolder;
    record.IsOrgVideo = request.keepSource ? 1 : 0;
    *record.Profile->m_pDesc = request.profile;
}

// What the library does not know of a task that it makes anew. Not what the site answers.
void carryOver(const CXMLInfo &from, CXMLInfo &to)
{
    to.TaskCreateTime = from.TaskCreateTime;
    to.ImagePath = from.ImagePath;
    to.CategoryID = from.CategoryID;
}

} // namespace

// Whether there is anything to fetch; if not, the task is on its way to its end.
bool DownloadDriver::enlist(const QString &key, const DownloadRequest &request)
{
    if (request.inspectOnly)
        return true;
    const ControllerLock lock;
    CXMLInfo *record = m_controller->getXMLInfo(key);
    if (record != nullptr && request.upgrade)
        return true;
    if (record != nullptr && !request.again && taskrecord::isComplete(*record)) {
        m_present.append(key);
        return false;
    }
    if (record == nullptr)
        record = m_controller->m_pHistory->Add(newRecord(key, request));
    setWishes(*record, request);
    record->State = int(TaskState::Waiting);
    m_changed.insert(key);
    if (request.again || !taskrecord::lacksOnlyItsCopy(*record))
        return true;
    copyAgain(key);
    return false;
}

// A large copy takes a while, and the library makes it on the thread that asks for it.
void DownloadDriver::copyAgain(const QString &key)
{
    m_copying.insert(key);
    m_copiers.start([this, key] {
        m_controller->CopyVideo(key);
        EngineMailbox::onState(&m_mailbox, key.toLatin1().constData(), DOWN_STATE_DOWNLOAD_FINISH,
                               0, FILE_TYPE_VIDEO);
    });
}

// Called with the lock held. A task with files keeps its record, and with it all that is known.
int DownloadDriver::requestParse(const QString &key, DownloadRequest request)
{
    CXMLInfo *old = m_controller->getXMLInfo(key);
    const bool upgrades = request.upgrade && !m_tasks[key].refreshed;
    if (old != nullptr && upgrades)
        return requestUpgrade(key, m_tasks[key], request.profile);
    if (old != nullptr && !old->FileName.isEmpty() && !request.inspectOnly)
        return m_controller->ReDownLoad(request.address, key);
    const int result = m_controller->DoParseVideo(request.address, request.outputFolder,
                                                  &request.profile, request.keepSource);
    CXMLInfo *record = m_controller->getXMLInfo(key);
    if (old == nullptr || record == nullptr || record == old)
        return result;
    carryOver(*old, *record);
    delete old; // unlinked records belong to the application
    return result;
}

void DownloadDriver::setState(const QString &key, TaskState state)
{
    const ControllerLock lock;
    CXMLInfo *record = m_controller->getXMLInfo(key);
    if (record == nullptr || m_tasks[key].request.inspectOnly)
        return;
    record->State = int(state);
    m_changed.insert(key);
}

void DownloadDriver::noteEnd(const QString &key, const Task &task, DownloadOutcome outcome)
{
    const ControllerLock lock;
    m_ReDownLoadList.removeAll(key);
    m_ConverterList.removeAll(key);
    CXMLInfo *record = m_controller->getXMLInfo(key);
    if (record == nullptr || task.request.inspectOnly || addressProblem(task.request.address))
        return;
    const bool finished = outcome == DownloadOutcome::Finished;
    const bool failed = outcome == DownloadOutcome::Failed;
    record->State = int(finished ? TaskState::Finished
                        : failed ? TaskState::Failed
                                 : TaskState::Stopped);
    if (finished)
        record->Progress = 100;
    else if (task.progress.total > 0)
        record->Progress = percentOf(task.progress);
    m_changed.insert(key);
}

void DownloadDriver::endPresent(const QString &key)
{
    Task &task = m_tasks[key];
    DownloadResult result;
    result.outcome = DownloadOutcome::Finished;
    result.finding = task.finding == Finding::Downloaded ? Finding::AlreadyThere : task.finding;
    {
        const ControllerLock lock;
        if (const CXMLInfo *record = m_controller->getXMLInfo(key)) {
            task.progress.title = record->Title;
            result.path = taskrecord::outputPath(*record);
        }
    }
    end(key, result);
}

// A task is at rest when neither its video nor its thumbnail is at work.
void DownloadDriver::settleIfAtRest(const QString &key)
{
    const bool isAtWork =
        m_tasks.contains(key) || m_thumbnails.contains(key) || m_thumbnailsToGet.contains(key);
    if (m_keeper != nullptr && !isAtWork)
        m_keeper->settle(key);
}
