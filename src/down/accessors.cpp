#include "down/cdown.h"

namespace {

template <typename Value>
Value read(void *handle, Value CXMLInfo::*field)
{
    const ControllerLock lock;
    return static_cast<CXMLInfo *>(handle)->*field;
}

template <typename Value>
void write(void *handle, Value CXMLInfo::*field, Value value)
{
    const ControllerLock lock;
    static_cast<CXMLInfo *>(handle)->*field = value;
}

int readOr(CDown &controller, const QString &key, int CXMLInfo::*field, int missing)
{
    const ControllerLock lock;
    const CXMLInfo *record = controller.getXMLInfo(key);
    return record != nullptr ? record->*field : missing;
}

template <typename Value>
bool writeIfThere(CDown &controller, const QString &key, Value CXMLInfo::*field, Value value)
{
    const ControllerLock lock;
    CXMLInfo *record = controller.getXMLInfo(key);
    if (record != nullptr)
        record->*field = value;
    return record != nullptr;
}

Profile_Desc *profileOf(void *handle)
{
    return static_cast<CXMLInfo *>(handle)->Profile->m_pDesc;
}

} // namespace

void CDown::CopyProFile(Profile_Desc *dst, Profile_Desc *src)
{
    const ControllerLock lock;
    if (dst != nullptr && src != nullptr)
        *dst = *src;
}

void CDown::setProfileDesc(void *handle, Profile_Desc *profile)
{
    CopyProFile(profileOf(handle), profile);
}

void CDown::getProfileDesc(void *handle, Profile_Desc *profile)
{
    CopyProFile(profile, profileOf(handle));
}

void CDown::SaveProfile(const QString &key, Profile_Desc *profile)
{
    const ControllerLock lock;
    if (CXMLInfo *record = m_pHistory->item(key))
        setProfileDesc(record, profile);
}

qint64 CDown::getVideoSize(void *handle)
{
    return read(handle, &CXMLInfo::FileSize);
}

void CDown::setVideoSize(void *handle, qint64 size)
{
    write(handle, &CXMLInfo::FileSize, size);
}

bool CDown::setVideoSize(const QString &key, qint64 size)
{
    return writeIfThere(*this, key, &CXMLInfo::FileSize, size);
}

int CDown::getDuration(void *handle)
{
    return read(handle, &CXMLInfo::Duration);
}

int CDown::getState(void *handle)
{
    return read(handle, &CXMLInfo::State);
}

void CDown::setState(void *handle, int state)
{
    write(handle, &CXMLInfo::State, state);
}

int CDown::getProgress(void *handle)
{
    return read(handle, &CXMLInfo::Progress);
}

int CDown::getProgress(const QString &key)
{
    return readOr(*this, key, &CXMLInfo::Progress, -1);
}

void CDown::setProgress(const QString &key, int progress)
{
    writeIfThere(*this, key, &CXMLInfo::Progress, progress);
}

int CDown::getDownState(const QString &key)
{
    return readOr(*this, key, &CXMLInfo::DownState, -1);
}

void CDown::setDownState(const QString &key, int state)
{
    writeIfThere(*this, key, &CXMLInfo::DownState, state);
}

int CDown::getParseState(const QString &key)
{
    return readOr(*this, key, &CXMLInfo::ParseState, -1);
}

void CDown::setParseState(const QString &key, int state)
{
    writeIfThere(*this, key, &CXMLInfo::ParseState, state);
}

QDateTime CDown::getDownLoadDate(void *handle)
{
    return read(handle, &CXMLInfo::DownLoadDate);
}

QString CDown::getTitle(void *handle)
{
    return read(handle, &CXMLInfo::Title);
}

QString CDown::getOrgWebSite(void *handle)
{
    return read(handle, &CXMLInfo::OrgWebSite);
}

QString CDown::getDownLoadURL(void *handle)
{
    return read(handle, &CXMLInfo::DownLoadURL);
}

QString CDown::getVideoID(void *handle)
{
    return read(handle, &CXMLInfo::VideoID);
}

QString CDown::getMD5(void *handle)
{
    return read(handle, &CXMLInfo::MD5Code);
}

QString CDown::getFileName(void *handle)
{
    return read(handle, &CXMLInfo::FileName);
}

QString CDown::getBaseName(void *handle)
{
    return read(handle, &CXMLInfo::BaseName);
}

QString CDown::getSaveAsPath(void *handle)
{
    return read(handle, &CXMLInfo::SaveAsPath);
}

QString CDown::getImagePath(void *handle)
{
    return read(handle, &CXMLInfo::ImagePath);
}

CXMLInfo *CDown::getXMLInfo(const QString &key)
{
    const ControllerLock lock;
    return m_pHistory->item(key);
}

CXMLInfo *CDown::item(int position)
{
    const ControllerLock lock;
    return m_pHistory->item(position);
}

int CDown::count()
{
    const ControllerLock lock;
    return m_pHistory->count();
}

int CDown::getIndex(const QString &key)
{
    const ControllerLock lock;
    return m_pHistory->GetIndex(key);
}

bool CDown::TaskExist(const QString &key)
{
    return getIndex(key) >= 0;
}
