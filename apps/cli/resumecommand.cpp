#include "commands.h"

#include "commandhistory.h"
#include "driver/taskrequests.h"
#include "resultwriter.h"
#include "session.h"

#include <QDir>

namespace {

// Nothing when a named task does not fit; that is reported.
std::optional<QList<DownloadRequest>> requestsToRetry(Session &session, const CommandLine &line)
{
    CDown &controller = session.driver().controller();
    if (line.arguments.isEmpty())
        return taskrequests::toRetry(controller);
    const auto keys = commandhistory::keysOf(controller, line.arguments);
    if (!keys)
        return std::nullopt;
    auto requests = taskrequests::toRetry(controller, *keys);
    if (requests.size() == keys->size())
        return requests;
    session.say(QStringLiteral(
        "videodown: a finished task is not tried again; \"get --again\" downloads it once more"));
    return std::nullopt;
}

ExitStatus carryOut(Session &session, const CommandLine &line,
                    const QList<DownloadRequest> &requests)
{
    if (requests.isEmpty())
        session.note(QStringLiteral("there is nothing to do"));
    resultwriter::attach(session, line);
    return session.run(requests);
}

} // namespace

ExitStatus runResume(const CommandLine &line)
{
    Session session(line, QDir::currentPath());
    if (const int code = session.prepare())
        return {code, 0};
    return carryOut(session, line, taskrequests::toResume(session.driver().controller()));
}

ExitStatus runRetry(const CommandLine &line)
{
    Session session(line, QDir::currentPath());
    if (const int code = session.prepare())
        return {code, 0};
    const auto requests = requestsToRetry(session, line);
    return requests ? carryOut(session, line, *requests) : ExitStatus{ExitFailed, 0};
}

ExitStatus runUpgrade(const CommandLine &line)
{
    Session session(line, QDir::currentPath());
    if (const int code = session.prepare())
        return {code, 0};
    CDown &controller = session.driver().controller();
    const QString key = commandhistory::keyOf(controller, line);
    if (key.isEmpty())
        return {ExitFailed, 0};
    if (const auto request = taskrequests::toUpgrade(controller, key, line.profile))
        return carryOut(session, line, {*request});
    session.say(QStringLiteral("videodown: only a finished task can be upgraded whose "
                               "video is there as it was downloaded"));
    return {ExitFailed, 0};
}
