#include "driver/controllerport.h"

#include "driver/taskrecord.h"

#include <algorithm>
#include <utility>

namespace {

// The controller has room at the engine for as many videos as it was made with.
std::unique_ptr<CDown> makeController(const ControllerPort::Settings &settings,
                                      EngineMailbox *mailbox)
{
    tagDownInfo info;
    info.pUserData = mailbox;
    info.pfnStateCallback = EngineMailbox::onState;
    info.pfnVideoInfoCallback = EngineMailbox::onVideoInfo;
    info.strDownloadPath = settings.downloadFolder;
    info.nThreadNum = maxVideoLimit;
    return std::make_unique<CDown>(&info);
}

// What the library does not know of a task that it makes anew. Not what the site answers.
void carryOver(const CXMLInfo &from, CXMLInfo &to)
{
    to.TaskCreateTime = from.TaskCreateTime;
    to.ImagePath = from.ImagePath;
    to.CategoryID = from.CategoryID;
}

} // namespace

ControllerPort::ControllerPort(const Settings &settings, std::function<void()> wake)
    : m_mailbox(std::move(wake)), m_controller(makeController(settings, &m_mailbox))
{
    setVideoLimit(settings.videoLimit);
    setProxy(settings.proxy);
    CDown::Downinit();
}

ControllerPort::~ControllerPort()
{
    shutDown({}, {});
}

void ControllerPort::setProxy(std::optional<tagProxyParam> proxy)
{
    m_controller->setProxyInfo(proxy ? &*proxy : nullptr);
    m_controller->setProxySet(proxy ? 1 : 0);
}

void ControllerPort::setVideoLimit(int limit)
{
    m_controller->setDownThreadNum(std::clamp(limit, 1, maxVideoLimit));
}

// While the lock is held, a request that was sent cannot leave the list, except when the engine
// ended it from inside the call.
ControllerPort::Answer ControllerPort::send(const QString &key, const std::function<int()> &request)
{
    const ControllerLock lock;
    if (request() == -1)
        return Answer::Refused;
    if (m_DownloadAllTask.contains(key) || m_mailbox.holdsEndOf(key))
        return Answer::Sent;
    giveBack(key);
    return Answer::Refused;
}

// A slot, or a place in a waiting list, from where nobody would call the key up.
void ControllerPort::giveBack(const QString &key)
{
    const ControllerLock lock;
    for (QStringList *waiting : {&m_controller->m_ParseWaitList, &m_controller->m_DownloadWaitList,
                                 &m_controller->m_ImageWaitList})
        waiting->removeAll(key);
    m_controller->ReleaseLock(key);
}

ControllerPort::Answer ControllerPort::parse(const QString &key, const DownloadRequest &request)
{
    const ControllerLock lock;
    const CXMLInfo *record = m_controller->getXMLInfo(key);
    if (record == nullptr || record->FileName.isEmpty() || request.inspectOnly)
        return sendParse(key, request);
    return send(key, [&] { return m_controller->ReDownLoad(request.address, key); });
}

ControllerPort::Answer ControllerPort::sendParse(const QString &key, const DownloadRequest &request)
{
    const ControllerLock lock;
    CXMLInfo *old = m_controller->getXMLInfo(key);
    Profile_Desc profile = request.profile;
    return send(key, [&] {
        const int result = m_controller->DoParseVideo(request.address, request.outputFolder,
                                                      &profile, request.keepSource);
        CXMLInfo *record = m_controller->getXMLInfo(key);
        if (old != nullptr && record != nullptr && record != old) {
            carryOver(*old, *record);
            delete old; // unlinked records belong to the application
        }
        return result;
    });
}

// The engine may answer from inside the request: the record is looked up anew behind it. The
// library does not say whether the engine took the parse.
ControllerPort::Answer ControllerPort::parseForUpgrade(const QString &key, Profile_Desc profile)
{
    const ControllerLock lock;
    const CXMLInfo *before = m_controller->getXMLInfo(key);
    if (before == nullptr)
        return Answer::Refused;
    const int keepsSource = before->IsOrgVideo;
    bool wantsLarger = false;
    const Answer answer = send(key, [&] {
        wantsLarger = m_controller->IsReDownLoadVideo(key, &profile);
        return wantsLarger ? 0 : -1;
    });
    CXMLInfo *record = m_controller->getXMLInfo(key);
    if (wantsLarger && record != nullptr)
        record->IsOrgVideo = keepsSource; // the library forgets it
    return wantsLarger ? answer : Answer::NothingToDo;
}

bool ControllerPort::acceptUpgrade(const QString &key)
{
    return m_controller->IsBetterVideo(key);
}

ControllerPort::Answer ControllerPort::download(const QString &key, const QString &folder,
                                                bool byProfile)
{
    const ControllerLock lock;
    m_controller->m_strDownloadPath = folder; // there is one for all tasks
    m_controller->m_bUseProfileFmt = byProfile;
    m_ReDownLoadList.append(key); // the library then writes to the name as it is
    return send(key, [&] { return m_controller->DownloadVideo(key); });
}

ControllerPort::Answer ControllerPort::downloadThumbnail(const QString &key)
{
    const ControllerLock lock;
    const CXMLInfo *record = m_controller->getXMLInfo(key);
    if (record == nullptr)
        return Answer::NothingToDo;
    m_controller->m_strDownloadPath = taskrecord::downloadFolder(*record);
    return send(key + u'1', [&] { return m_controller->DoDownloadVideo(key, false); });
}

void ControllerPort::stop(const QString &key)
{
    m_controller->Stop(key, false);
}

void ControllerPort::stopThumbnail(const QString &key)
{
    m_controller->Stop(key + u'1', false);
}

bool ControllerPort::togglePause(const QString &key)
{
    return m_controller->Pause(key) == 0;
}

void ControllerPort::forget(const QString &key)
{
    const ControllerLock lock;
    m_ReDownLoadList.removeAll(key);
    m_ConverterList.removeAll(key);
}

void ControllerPort::shutDown(const QStringList &tasks, const QStringList &thumbnails)
{
    if (std::exchange(m_isDown, true))
        return;
    for (const QString &key : tasks)
        m_controller->StopAll(key);
    for (const QString &key : thumbnails)
        m_controller->StopAll(key + u'1');
    CDown::Quit();
    CDown::DownUninit();
}
