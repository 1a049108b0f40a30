#include "down/cdown.h"
#include "down/enginerequest.h"
#include "video/videoinforesponse.h"

#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace {

// NaN says nothing about a size, and sizes beyond 64 bits are as large as they can be reported.
qint64 fileSize(double value)
{
    constexpr double limit = 9223372036854775808.0; // 2 to the 63rd
    if (std::isnan(value))
        return 0;
    if (value >= limit)
        return std::numeric_limits<qint64>::max();
    if (value < -limit)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(value);
}

void storeFileSize(CDown &controller, const QString &key, double value)
{
    const ControllerLock lock;
    if (CXMLInfo *record = controller.m_pHistory->item(key))
        record->FileSize = fileSize(value);
}

void endByUserStop(CDown &controller, const QString &key, FILE_TYPE type)
{
    const ControllerLock lock;
    if (g_bApplicationExit)
        controller.ReleaseLock(key);
    else
        controller.DownloadUnlock(key, type, false);
}

void handleState(CDown &controller, const QString &key, tagDownloadStateCode code, double value,
                 FILE_TYPE type)
{
    switch (code) {
    case DOWN_STATE_DOWNLOAD_FINISH:
        controller.CopyVideo(key);
        controller.DownloadUnlock(key, type, false);
        break;
    case DOWN_STATE_PARSE_FAIL:
        controller.ParseUnlock(key);
        break;
    case DOWN_STATE_DOWNLOAD_FAIL:
        controller.DownloadUnlock(key, type, false);
        break;
    case DOWN_STATE_USER_STOP:
        endByUserStop(controller, key, type);
        break;
    case DOWN_STATE_FILE_SIZE:
        storeFileSize(controller, key, value);
        break;
    default:
        break;
    }
}

// Calls the application without the lock, however deep this thread holds it: the callback may wait
// for another thread that needs the controller.
template <typename Callback, typename... Arguments>
int forward(CDown &controller, Callback CDown::*member, Arguments... arguments)
{
    Callback callback = nullptr;
    void *userData = nullptr;
    {
        const ControllerLock lock;
        callback = controller.*member;
        userData = controller.m_pUserData;
    }
    if (userData == nullptr || callback == nullptr)
        return -1;
    const ControllerUnlock unlock;
    return callback(userData, arguments...);
}

// The callback's result when the event goes no further: 0 while everything stops, -1 for an answer
// that nobody waits for or that holds nothing.
std::optional<int> handleVideoInfo(CDown *controller, const char *key, tagDownloadStateCode code,
                                   std::string_view response)
{
    const ControllerLock lock;
    if (g_bStopAll) {
        m_DownloadAllTask.removeAll(QString::fromLatin1(key));
        return 0;
    }
    if (controller == nullptr)
        return -1;
    if (code != DOWN_STATE_PARSE_SUCCESS)
        return std::nullopt;
    CXMLInfo *record = controller->m_pHistory->item(QString::fromLocal8Bit(key));
    if (record == nullptr || !videoinforesponse::hasLines(response))
        return -1;
    videoinforesponse::store(response, *record);
    controller->ParseUnlock(record->MD5Code);
    return std::nullopt;
}

int StateCallback(void *user, const char *key, tagDownloadStateCode code, double value,
                  FILE_TYPE type)
{
    if (user == nullptr)
        return -1;
    auto &controller = *static_cast<CDown *>(user);
    handleState(controller, QString::fromLatin1(key), code, value, type);
    return forward(controller, &CDown::m_pfnStateCallback, key, code, value, type);
}

int VideoInfoCallback(void *user, const char *key, tagDownloadStateCode code, char *data,
                      unsigned long length)
{
    auto *controller = static_cast<CDown *>(user);
    const std::string_view response = data != nullptr ? data : "";
    if (const auto result = handleVideoInfo(controller, key, code, response))
        return *result;
    return forward(*controller, &CDown::m_pfnVideoInfoCallback, key, code, data, length);
}

} // namespace

request::Callbacks request::callbacks()
{
    return {VideoInfoCallback, StateCallback};
}
