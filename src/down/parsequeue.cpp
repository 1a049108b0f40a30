#include "down/cdown.h"
#include "down/enginerequest.h"
#include "video/formatentry.h"

int CDown::DoParseVideo(const QString &url, const QString &saveAsPath, Profile_Desc *profile,
                        bool isOrgVideo)
{
    const ControllerLock lock;
    if (url.isEmpty() || saveAsPath.isEmpty())
        return 0;
    const QString key = GetURLToMD5(url);
    auto *record = new CXMLInfo(nullptr);
    record->MD5Code = key;
    record->SaveAsPath = saveAsPath;
    record->OrgWebSite = url;
    record->IsOrgVideo = isOrgVideo ? 1 : 0;
    CopyProFile(record->Profile->m_pDesc, profile);
    const QString address = record->OrgWebSite;
    // The new record is complete before the old one goes: the arguments may be the old one's.
    remove(key, false);
    m_pHistory->Add(record);
    return ParseLock(key) ? PaseVideoInfo(address, key) : 0;
}

bool CDown::ParseLock(const QString &key)
{
    const ControllerLock lock;
    if (m_nParseFree > 0) {
        --m_nParseFree;
        return true;
    }
    if (CXMLInfo *record = m_pHistory->item(key))
        record->ParseState = 1;
    m_ParseWaitList.append(key);
    return false;
}

bool CDown::engineHasRoomFor(const QString &key) const
{
    return m_DownloadAllTask.size() < m_nEngineTaskMax && !m_DownloadAllTask.contains(key);
}

int CDown::sendParse(const QString &url, const QString &key)
{
    g_bStopAll = false;
    g_bApplicationExit = false;
    tagTaskInfo task(localForm(key).left(32).constData());
    const bool carried = request::fill(task.szPageURL, url);
    request::fillCommon(task, *this, 0);
    task.pUserData = this;
    task.pfnVideoInfoCallback = request::callbacks().videoInfo;
    if (!engineHasRoomFor(key))
        return 0;
    m_DownloadAllTask.append(key);
    return carried ? ::ParseVideoInfo(task) : -1;
}

int CDown::PaseVideoInfo(const QString &url, const QString &key)
{
    const ControllerLock lock;
    const QString ownKey = key;
    const int result = sendParse(url, ownKey);
    if (result == -1)
        ParseUnlock(ownKey);
    return result;
}

bool CDown::ParseStart(const QString &key)
{
    const ControllerLock lock;
    const CXMLInfo *record = m_pHistory->item(key);
    if (record == nullptr)
        return false;
    const QString address = record->OrgWebSite;
    const QString taskKey = record->MD5Code;
    return ParseLock(taskKey) && PaseVideoInfo(address, taskKey) != 0;
}

void CDown::endParse(const QString &key)
{
    m_DownloadAllTask.removeAll(key);
    if (CXMLInfo *record = m_pHistory->item(key))
        record->ParseState = 3;
    freeParseSlot();
}

// One round ends a parse and starts the oldest waiting one. When the engine refuses that one, it
// has ended too, and the next round is its.
bool CDown::ParseUnlock(const QString &key)
{
    const ControllerLock lock;
    QString ended = key;
    bool started = false;
    for (bool first = true;; first = false) {
        endParse(ended);
        if (m_nParseFree <= 0 || m_ParseWaitList.isEmpty())
            break;
        const CXMLInfo *record = m_pHistory->item(m_ParseWaitList.takeFirst());
        if (record == nullptr)
            break;
        const QString address = record->OrgWebSite;
        ended = record->MD5Code;
        if (!ParseLock(ended))
            break;
        const int result = sendParse(address, ended);
        if (first)
            started = result != 0;
        if (result != -1)
            break;
    }
    return started;
}

int CDown::ReDownLoad(const QString &url, const QString &key)
{
    const ControllerLock lock;
    const QString ownKey = key;
    if (!ParseLock(ownKey))
        return 0;
    if (CXMLInfo *record = m_pHistory->item(ownKey)) {
        record->DownState = -1;
        record->ParseState = -1;
    }
    const int result = PaseVideoInfo(url, ownKey);
    m_ReDownLoadList.append(ownKey);
    return result;
}

bool CDown::ConverterParse(const QString &url, const QString &key)
{
    const ControllerLock lock;
    return ParseLock(key) && PaseVideoInfo(url, key) == 0;
}

bool CDown::IsReDownLoadVideo(const QString &key, Profile_Desc *profile)
{
    const ControllerLock lock;
    CXMLInfo *record = m_pHistory->item(key);
    if (record == nullptr)
        return false;
    const QString taskKey = key;
    Profile_Desc &wanted = *record->Profile->m_pDesc;
    CopyProFile(&wanted, profile);
    const qint64 have = formatentry::frameArea(record->VideoWidth, record->VideoHeight);
    if (have >= formatentry::frameArea(wanted.vSize_Width, wanted.vSize_Height) ||
        !wanted.includeVideo)
        return false;
    record->IsOrgVideo = 0;
    const QString address = record->OrgWebSite;
    ConverterParse(address, taskKey);
    m_ConverterList.append(taskKey);
    return true;
}
