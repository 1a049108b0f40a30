#include "down/cdown.h"
#include "down/paths.h"
#include "video/formatentry.h"
#include "video/formatselection.h"

#include <QFile>

namespace {

bool offersMore(const CXMLInfo &record)
{
    const tagVideoInfo want = formatentry::wantedFormat(*record.Profile->m_pDesc);
    tagVideoInfo offered{};
    formatselection::equalOrLarger(record.fmt_list, want, offered);
    const qint64 have = formatentry::frameArea(record.VideoWidth, record.VideoHeight);
    const qint64 offer = formatentry::frameArea(offered.nWidth, offered.nHeight);
    return static_cast<quint64>(have) < static_cast<quint64>(offer);
}

} // namespace

// Nothing when the key is not up for the check.
std::optional<bool> CDown::replaceByBetterVideo(const QString &key)
{
    if (m_ConverterList.removeAll(key) == 0)
        return std::nullopt;
    const CXMLInfo *record = m_pHistory->item(key);
    if (record == nullptr)
        return std::nullopt;
    const bool better = offersMore(*record);
    if (better)
        DeleteVideoFile(key);
    return better;
}

void CDown::announceBetterVideo(const QString &key, bool better)
{
    BetterVideoCallbackFunction callback = nullptr;
    void *userData = nullptr;
    {
        const ControllerLock lock;
        callback = m_pfnBetterVideoCallback;
        userData = m_pUserData;
    }
    if (callback == nullptr)
        return;
    const ControllerUnlock unlock;
    callback(userData, localForm(key).constData(), better ? 1 : 0);
}

bool CDown::IsBetterVideo(const QString &key)
{
    const QString ownKey = key;
    std::optional<bool> better;
    {
        const ControllerLock lock;
        better = replaceByBetterVideo(ownKey);
    }
    if (better)
        announceBetterVideo(ownKey, *better);
    return better.value_or(true);
}
