#include "down/cdown.h"

#include <QFile>

namespace {

bool removeFile(const QString &path)
{
    return !path.isEmpty() && QFile::remove(path);
}

bool removeFiles(const CXMLInfo &record)
{
    const bool video = removeFile(record.FileName);
    const bool image = removeFile(record.ImagePath);
    return video && image;
}

} // namespace

bool CDown::DeleteVideoFile(int position)
{
    const ControllerLock lock;
    if (position < 0 || position >= m_pHistory->count())
        return false;
    return removeFiles(*m_pHistory->item(position));
}

bool CDown::DeleteVideoFile(const QString &key)
{
    const ControllerLock lock;
    const CXMLInfo *record = m_pHistory->item(key);
    return record != nullptr && removeFiles(*record);
}

void CDown::remove(int position, bool deleteFiles)
{
    const ControllerLock lock;
    if (deleteFiles)
        DeleteVideoFile(position);
    m_pHistory->remove(position);
}

void CDown::remove(const QString &key, bool deleteFiles)
{
    const ControllerLock lock;
    remove(m_pHistory->GetIndex(key), deleteFiles);
}

void CDown::removeAll(bool deleteFiles)
{
    const ControllerLock lock;
    for (int i = 0; deleteFiles && i < m_pHistory->count(); ++i)
        DeleteVideoFile(i);
    m_pHistory->removeAll();
}
