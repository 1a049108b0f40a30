#include "scriptedengine.h"

#include <QtGlobal>

ScriptedEngine &ScriptedEngine::instance()
{
    static ScriptedEngine engine;
    return engine;
}

void ScriptedEngine::reset()
{
    const Guard lock(m_mutex);
    m_requests.clear();
    m_calls.clear();
    m_hook = nullptr;
    m_result = 0;
}

void ScriptedEngine::setResult(int result)
{
    const Guard lock(m_mutex);
    m_result = result;
}

void ScriptedEngine::setHook(const Hook &hook)
{
    const Guard lock(m_mutex);
    m_hook = hook;
}

QStringList ScriptedEngine::calls() const
{
    const Guard lock(m_mutex);
    return m_calls;
}

QStringList ScriptedEngine::calls(const char *name) const
{
    const QString prefix = QLatin1String(name) + QLatin1Char(' ');
    QStringList found = calls().filter(prefix);
    return found.replaceInStrings(prefix, QString());
}

void ScriptedEngine::clearCalls()
{
    const Guard lock(m_mutex);
    m_calls.clear();
}

tagTaskInfo ScriptedEngine::request(const QString &key) const
{
    const Guard lock(m_mutex);
    const QByteArray narrowKey = key.toLocal8Bit();
    for (auto it = m_requests.crbegin(); it != m_requests.crend(); ++it) {
        if (narrowKey == it->szTaskKey)
            return *it;
    }
    qFatal("no request was sent for %s", narrowKey.constData());
}

int ScriptedEngine::sendState(const QString &key, tagDownloadStateCode code, double value) const
{
    const tagTaskInfo info = request(key);
    return info.pfnStateCallback(info.pUserData, info.szTaskKey, code, value,
                                 static_cast<FILE_TYPE>(info.nFileType));
}

int ScriptedEngine::sendResponse(const QString &key, const QByteArray &text) const
{
    const tagTaskInfo info = request(key);
    if (info.pfnVideoInfoCallback == nullptr)
        qFatal("%s is no parse request", info.szTaskKey);
    QByteArray data = text;
    return info.pfnVideoInfoCallback(info.pUserData, info.szTaskKey, DOWN_STATE_PARSE_SUCCESS,
                                     data.data(), static_cast<unsigned long>(data.size()));
}

int ScriptedEngine::answer(Kind kind, const tagTaskInfo &request)
{
    static const char *const names[] = {"parse", "video", "image"};
    Hook hook;
    int result = note(names[static_cast<int>(kind)], request.szTaskKey);
    {
        const Guard lock(m_mutex);
        m_requests.push_back(request);
        hook = m_hook;
    }
    return hook ? hook(kind, request) : result;
}

int ScriptedEngine::note(const char *name, const char *argument)
{
    const Guard lock(m_mutex);
    QString call = QLatin1String(name);
    if (argument != nullptr)
        call += QLatin1Char(' ') + QString::fromLocal8Bit(argument);
    m_calls.append(call);
    return m_result;
}

extern "C" {

int DownloadInit()
{
    return ScriptedEngine::instance().note("init");
}

int DownloadCleanup()
{
    return ScriptedEngine::instance().note("cleanup");
}

int Quit()
{
    return ScriptedEngine::instance().note("quit");
}

int SetProductAppDataPath(const char *path)
{
    return ScriptedEngine::instance().note("path", path);
}

int ParseVideoInfo(tagTaskInfo request)
{
    return ScriptedEngine::instance().answer(ScriptedEngine::Kind::Parse, request);
}

int DownloadVideo(tagTaskInfo request)
{
    return ScriptedEngine::instance().answer(ScriptedEngine::Kind::Video, request);
}

int DownloadImage(tagTaskInfo request)
{
    return ScriptedEngine::instance().answer(ScriptedEngine::Kind::Image, request);
}

int StopDownload(const char *key)
{
    return ScriptedEngine::instance().note("stop", key);
}

int SuspendedDownload(const char *key)
{
    return ScriptedEngine::instance().note("suspend", key);
}

} // extern "C"
