#include "down/cdown.h"
#include "down/enginerequest.h"

#include <QFile>

namespace {

bool isTaskKey(const QString &key)
{
    return key.size() == 32;
}

} // namespace

int CDown::DoDownloadVideo(const QString &key, bool withVideo)
{
    const QString taskKey = key;
    std::optional<bool> better;
    {
        const ControllerLock lock;
        if (g_bStopAll)
            return 0;
        better = replaceByBetterVideo(taskKey);
    }
    if (better)
        announceBetterVideo(taskKey, *better);
    if (!better.value_or(true))
        return 0;
    const ControllerLock lock;
    int result = DownloadImage(taskKey + u'1');
    if (withVideo)
        result = DownloadVideo(taskKey);
    return result;
}

bool CDown::DownloadLock(const QString &key)
{
    const ControllerLock lock;
    if (m_nDownFree > 0) {
        --m_nDownFree;
        return true;
    }
    if (CXMLInfo *record = m_pHistory->item(key))
        record->DownState = 1;
    m_DownloadWaitList.append(key);
    return false;
}

int CDown::startVideo(const QString &key, std::optional<QString> &refused)
{
    if (!DownloadLock(key) || m_DownloadAllTask.size() >= m_nEngineTaskMax)
        return 0;
    return sendVideo(key, refused);
}

int CDown::DownloadVideo(const QString &key)
{
    const ControllerLock lock;
    std::optional<QString> refused;
    const int result = startVideo(QString(key), refused);
    if (refused)
        DownloadUnlock(*refused, FILE_TYPE_VIDEO, false);
    return result;
}

bool CDown::startWaitingVideo(std::optional<QString> &refused)
{
    if (m_nDownFree <= 0 || m_DownloadWaitList.isEmpty())
        return false;
    const QString oldest = m_DownloadWaitList.takeFirst();
    return startVideo(oldest, refused) == 0;
}

bool CDown::QueueDownload(bool /*reset*/)
{
    const ControllerLock lock;
    std::optional<QString> refused;
    const bool result = startWaitingVideo(refused);
    if (refused)
        DownloadUnlock(*refused, FILE_TYPE_VIDEO, false);
    return result;
}

bool CDown::takeImageSlot(const QString &imageKey)
{
    if (m_nParseFree > 0 && m_DownloadAllTask.size() < m_nEngineTaskMax) {
        --m_nParseFree;
        return true;
    }
    m_ImageWaitList.append(imageKey);
    return false;
}

int CDown::DownloadImage(const QString &imageKey)
{
    const ControllerLock lock;
    const QString ownKey = imageKey;
    return takeImageSlot(ownKey) ? DownloadRun(ownKey, false) : 0;
}

bool CDown::ImageLock(const QString &imageKey)
{
    const ControllerLock lock;
    return takeImageSlot(imageKey);
}

int CDown::ImageUnlock(const QString & /*imageKey*/)
{
    const ControllerLock lock;
    freeParseSlot();
    return 0;
}

int CDown::DownloadImageRun(const QString &imageKey, CXMLInfo *record, tagTaskInfo request)
{
    const ControllerLock lock;
    const QString ownKey = imageKey;
    const QString path = m_strDownloadPath + g_BackSlash + ownKey + QLatin1String(".jpg");
    if (QFile::exists(path))
        QFile::remove(path);
    record->ImagePath = path;
    request.nFileType = FILE_TYPE_IMAGE;
    const bool carried = request::fill(request.szTaskKey, ownKey) &&
                         request::fits(request.szPageURL, localForm(record->OrgWebSite)) &&
                         request::fill(request.szDownloadURL, record->ImageURL) &&
                         request::fill(request.szSavePath, path);
    if (!engineHasRoomFor(ownKey))
        return 0;
    m_DownloadAllTask.append(ownKey);
    const int result = carried ? ::DownloadImage(request) : -1;
    if (result == -1)
        ParseUnlock(ownKey);
    return result;
}

void CDown::freeParseSlot()
{
    if (m_nParseFree < 3)
        ++m_nParseFree;
}

void CDown::freeDownloadSlot()
{
    if (m_nDownFree < DOWN_THREADNUM_MAX)
        ++m_nDownFree;
}

void CDown::endDownload(const QString &key, bool reset)
{
    m_DownLoadingList.removeAll(key);
    m_DownloadAllTask.removeAll(key);
    if (CXMLInfo *record = m_pHistory->item(key)) {
        if (reset)
            record->ParseState = -1;
        record->DownState = 3;
    }
}

bool CDown::startWaitingImage()
{
    if (m_nParseFree < 1 || m_nParseFree > 3 || m_ImageWaitList.isEmpty())
        return false;
    return DownloadImage(m_ImageWaitList.takeFirst()) == 0;
}

bool CDown::startWaitingVideos(std::optional<QString> &refused)
{
    const auto roomForVideo = [this]() VIDEODOWN_NEEDS_LOCK {
        return m_nDownFree > 0 && m_DownLoadingList.size() < DOWN_THREADNUM_MAX;
    };
    if (!roomForVideo())
        return false;
    bool started = startWaitingVideo(refused);
    if (started && roomForVideo() && m_nDownFree < DOWN_THREADNUM_MAX)
        started = startWaitingVideo(refused);
    return started;
}

// One round ends a download and starts waiting work. A waiting video that the engine refuses has
// ended too, and the next round is its; nothing is left to do in the round that started it.
bool CDown::DownloadUnlock(const QString &key, FILE_TYPE type, bool reset)
{
    const ControllerLock lock;
    QString ended = key;
    bool answer = false;
    for (bool first = true;; first = false) {
        endDownload(ended, reset && first);
        if (isTaskKey(ended)) {
            if (m_DownLoadingList.size() < DOWN_THREADNUM_MAX)
                freeDownloadSlot();
            freeParseSlot();
        } else if (ended.contains(u'1')) {
            freeParseSlot();
        }
        if (type == FILE_TYPE_IMAGE)
            return startWaitingImage();
        std::optional<QString> refused;
        const bool started = type == FILE_TYPE_VIDEO && startWaitingVideos(refused);
        if (first)
            answer = started;
        if (!refused)
            return answer;
        ended = *refused;
    }
}

void CDown::ReleaseLock(const QString &key)
{
    const ControllerLock lock;
    const QString ended = key;
    endDownload(ended, false);
    if (isTaskKey(ended))
        freeDownloadSlot();
    if (isTaskKey(ended) || ended.contains(u'1'))
        freeParseSlot();
}
