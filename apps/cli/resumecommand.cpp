#include "resumecommand.h"

#include "driver/taskrecord.h"
#include "resultwriter.h"
#include "session.h"
#include "stored.h"

#include <QDir>

#include <functional>

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

// Nothing when a named task does not fit; that is told.
std::optional<QList<DownloadRequest>> requestsToRetry(Session &session, const CommandLine &line)
{
    CDown &controller = session.driver().controller();
    if (line.arguments.isEmpty())
        return requestsFor(controller, [](const CXMLInfo &record) {
            const TaskState state = taskrecord::stateOf(record);
            return state == TaskState::Failed || state == TaskState::Stopped;
        });
    const auto keys = stored::keysOf(controller, line.arguments);
    if (!keys)
        return std::nullopt;
    auto requests = requestsFor(controller, [&keys](const CXMLInfo &record) {
        return keys->contains(record.MD5Code) && taskrecord::stateOf(record) != TaskState::Finished;
    });
    if (requests.size() == keys->size())
        return requests;
    session.view().say(QStringLiteral(
        "videodown: a finished task is not tried again; \"get --again\" downloads it once more"));
    return std::nullopt;
}

ExitStatus carryOut(Session &session, const CommandLine &line,
                    const QList<DownloadRequest> &requests)
{
    if (requests.isEmpty() && !line.quiet)
        session.view().say(QStringLiteral("there is nothing to do"));
    resultwriter::attach(session, line);
    return session.run(requests);
}

} // namespace

ExitStatus runResume(const CommandLine &line)
{
    Session session(line, QDir::currentPath());
    if (!session.canConvert())
        return {ExitUsage, 0};
    if (!session.openHistory())
        return {ExitHistory, 0};
    return carryOut(session, line,
                    requestsFor(session.driver().controller(), [](const CXMLInfo &record) {
                        return taskrecord::isInterrupted(record) ||
                               taskrecord::stateOf(record) == TaskState::Stopped;
                    }));
}

ExitStatus runRetry(const CommandLine &line)
{
    Session session(line, QDir::currentPath());
    if (!session.canConvert())
        return {ExitUsage, 0};
    if (!session.openHistory())
        return {ExitHistory, 0};
    const auto requests = requestsToRetry(session, line);
    return requests ? carryOut(session, line, *requests) : ExitStatus{ExitFailed, 0};
}

ExitStatus runUpgrade(const CommandLine &line)
{
    Session session(line, QDir::currentPath());
    if (!session.openHistory())
        return {ExitHistory, 0};
    CDown &controller = session.driver().controller();
    const QString key = stored::keyOf(controller, line);
    if (key.isEmpty())
        return {ExitFailed, 0};
    auto requests = requestsFor(controller, [&key](const CXMLInfo &record) {
        return record.MD5Code == key && taskrecord::stateOf(record) == TaskState::Finished &&
               taskrecord::isDownloaded(record);
    });
    if (requests.isEmpty()) {
        session.view().say(QStringLiteral("videodown: only a finished task can be upgraded whose "
                                          "video is there as it was downloaded"));
        return {ExitFailed, 0};
    }
    requests.first().profile = line.profile;
    requests.first().upgrade = true;
    return carryOut(session, line, requests);
}
