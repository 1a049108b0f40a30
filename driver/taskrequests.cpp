#include "driver/taskrequests.h"

#include "driver/taskrecord.h"

#include <functional>

namespace taskrequests {

namespace {

QList<DownloadRequest> requestsFor(CDown &controller,
                                   const std::function<bool(const CXMLInfo &)> &wanted)
{
    const ControllerLock lock;
    QList<DownloadRequest> requests;
    for (const CXMLInfo *record : std::as_const(controller.m_pHistory->m_InfoList)) {
        if (wanted(*record))
            requests << taskrecord::requestFor(*record);
    }
    return requests;
}

} // namespace

QList<DownloadRequest> interrupted(CDown &controller)
{
    return requestsFor(controller, taskrecord::isInterrupted);
}

QList<DownloadRequest> toResume(CDown &controller)
{
    return requestsFor(controller, [](const CXMLInfo &record) {
        return !taskrecord::obstacle(record, TaskAction::Resume);
    });
}

QList<DownloadRequest> toRetry(CDown &controller)
{
    return requestsFor(controller, taskrecord::hasFailedOrStopped);
}

QList<DownloadRequest> toRetry(CDown &controller, const QStringList &keys)
{
    return requestsFor(controller, [&keys](const CXMLInfo &record) {
        return keys.contains(record.MD5Code) && !taskrecord::obstacle(record, TaskAction::Retry);
    });
}

std::optional<DownloadRequest> toUpgrade(CDown &controller, const QString &key,
                                         const Profile_Desc &profile)
{
    auto requests = requestsFor(controller, [&key](const CXMLInfo &record) {
        return record.MD5Code == key && !taskrecord::obstacle(record, TaskAction::Upgrade);
    });
    if (requests.isEmpty())
        return std::nullopt;
    requests.first().profile = profile;
    requests.first().upgrade = true;
    return requests.first();
}

} // namespace taskrequests
