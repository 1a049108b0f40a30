#include "down/cdown.h"
#include "down/paths.h"
#include "history/historyfile.h"

#include <climits>

int DOWN_THREADNUM_MAX = 0;
bool g_bApplicationExit = true;
bool g_bStopAll = false;
QStringList m_DownLoadingList;
QStringList m_DownloadAllTask;
QStringList m_ConverterList;
QStringList m_ReDownLoadList;
const QChar g_BackSlash = u'/';

namespace {

constexpr int parseSlots = 3;

} // namespace

CDown::CDown(tagDownInfo *info)
{
    const ControllerLock lock;
    const tagDownInfo settings = info != nullptr ? *info : tagDownInfo();
    m_pUserData = settings.pUserData;
    m_pfnStateCallback = settings.pfnStateCallback;
    m_pfnVideoInfoCallback = settings.pfnVideoInfoCallback;
    m_pHistory = new CXMLHistory;
    m_pSelf = this;
    m_bUseProfileFmt = settings.bUseProfileFmt;
    m_nParseFree = parseSlots;
    DOWN_THREADNUM_MAX = settings.nThreadNum;
    m_nDownFree = settings.nThreadNum;
    m_nEngineTaskMax = qMin(DOWN_THREADNUM_MAX, INT_MAX - parseSlots) + parseSlots;
    m_strXmlFile = settings.strXmlFile;
    m_strDownloadPath = settings.strDownloadPath;
    m_pfnBetterVideoCallback = settings.pfnBetterVideoCallback;
    m_ProxyParam = {};
    m_nProxySet = 0;
    m_ConverterList.clear();
    m_DownLoadingList.clear();
    m_DownloadAllTask.clear();
}

CDown::~CDown()
{
    const ControllerLock lock;
    m_ParseWaitList.clear();
    m_DownloadWaitList.clear();
    m_ImageWaitList.clear();
    m_ReDownLoadList.clear();
    m_ConverterList.clear();
    m_DownLoadingList.clear();
    m_DownloadAllTask.clear();
    delete m_pHistory;
}

void CDown::Downinit()
{
    ::DownloadInit();
}

int CDown::DownUninit()
{
    return ::DownloadCleanup();
}

int CDown::Quit()
{
    return ::Quit();
}

int CDown::SetProductAppDataPath(const char *path)
{
    return ::SetProductAppDataPath(path);
}

void CDown::setDownThreadNum(int n)
{
    const ControllerLock lock;
    if (n == DOWN_THREADNUM_MAX)
        return;
    DOWN_THREADNUM_MAX = n;
    m_nDownFree = n;
}

void CDown::setProxySet(int flag)
{
    const ControllerLock lock;
    m_nProxySet = flag;
}

void CDown::setProxyInfo(tagProxyParam *param)
{
    const ControllerLock lock;
    if (param != nullptr)
        m_ProxyParam = *param;
}

bool CDown::AutoSaveXmlFile()
{
    const ControllerLock lock;
    return !m_strXmlFile.isEmpty();
}

int CDown::Start(const QString & /*key*/)
{
    return 0;
}

int CDown::ParsePause(const QString & /*key*/)
{
    return 0;
}

void CDown::LoadFromFile(const QString &path)
{
    const QString file = path;
    if (!historyfile::exists(file)) {
        const ControllerUnlock unlock;
        historyfile::announceMissing();
        return;
    }
    CXMLHistory *history = nullptr;
    {
        const ControllerLock lock;
        history = m_pHistory;
    }
    const QList<CXMLInfo *> tasks = historyfile::load(file, history).tasks;
    const ControllerLock lock;
    m_pHistory->m_InfoList.append(tasks);
}

void CDown::SaveToFile(const QString &path)
{
    const QString file = path;
    QByteArray content;
    {
        const ControllerLock lock;
        content = historyfile::serialize(*m_pHistory);
    }
    historyfile::write(file, content);
}
