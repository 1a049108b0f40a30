#include "down/cdown.h"
#include "down/paths.h"

int CDown::stopAtEngine(const QString &key)
{
    const QString ownKey = key;
    const int result = ::StopDownload(localForm(ownKey).constData());
    m_DownloadWaitList.removeAll(ownKey);
    m_ParseWaitList.removeAll(ownKey);
    m_ImageWaitList.removeAll(ownKey + u'1');
    return result;
}

int CDown::Stop(const QString &key, bool /*flag*/)
{
    const ControllerLock lock;
    const int result = stopAtEngine(key);
    g_bApplicationExit = false;
    return result;
}

int CDown::StopAll(const QString &key)
{
    const ControllerLock lock;
    const int result = stopAtEngine(key);
    m_nParseFree = 3;
    g_bApplicationExit = true;
    g_bStopAll = true;
    return result;
}

int CDown::Pause(const QString &key)
{
    const ControllerLock lock;
    return ::SuspendedDownload(localForm(key).constData());
}
