/** Requests, and the table of those that are under way. */
#ifndef VIDEODOWN_TASKENGINE_REQUEST_H
#define VIDEODOWN_TASKENGINE_REQUEST_H

#include "engine/annotatedmutex.h"
#include "taskengine/eventqueue.h"
#include "taskengine/options.h"
#include "taskengine/targetfile.h"

#include <deque>
#include <memory>
#include <string>
#include <unordered_map>

namespace taskengine {

class RequestTable;

enum class RequestKind { Parse, Video, Image };

/** A request as it was accepted. Constant from then on, but for what `target` points to. */
class Request : public EventQueue
{
public:
    Request(RequestKind requestKind, const tagTaskInfo &info, std::shared_ptr<RequestTable> table);

    /** @return whether the record has what a request of this kind needs */
    bool isUsable() const;

    void deliver(Event &event) override;

    const RequestKind kind;
    const std::shared_ptr<const Options> options;
    /** The engine's copy; clears itself, so that no proxy password stays behind. */
    const tagTaskInfo record;
    /** The file of a download. The sender's until the request is submitted, then its job's, and in
     * the end its completion's. */
    const std::shared_ptr<TargetFile> target = std::make_shared<TargetFile>();

private:
    void call(tagDownloadStateCode code, double value) const;
    void complete(Event &event) const;

    const std::shared_ptr<RequestTable> m_table;
};

using RequestPointer = std::shared_ptr<Request>;

/** What the transfer thread is asked to do. */
struct Command
{
    enum class Verb { Start, Stop, TogglePause };

    Verb verb;
    RequestPointer request;
};

/**
 * The requests under way by key, with the commands that the transfer thread has not taken yet. Both
 * stand behind one lock, so that no stop can overtake the start it belongs to. Every member may be
 * called from any thread.
 */
class RequestTable
{
public:
    /** @return whether a request with this key would be taken now */
    bool isFree(const std::string &key) const;

    /** Takes the request in and queues its start. @return false when closed or the key is taken */
    bool submit(const RequestPointer &request);

    /** Queues a command for the request of this key. @return false when there is none */
    bool command(const std::string &key, Command::Verb verb);

    /** Removes the request, so that its key may be used again. */
    void erase(const Request &request);

    /** Refuses everything from now on and forgets all requests and commands. */
    void close();

    /** @return the commands in the order they came */
    std::deque<Command> takeCommands();

private:
    mutable AnnotatedMutex m_mutex;
    std::unordered_map<std::string, RequestPointer> m_requests VIDEODOWN_GUARDED_BY(m_mutex);
    std::deque<Command> m_commands VIDEODOWN_GUARDED_BY(m_mutex);
    bool m_closed VIDEODOWN_GUARDED_BY(m_mutex) = false;
};

} // namespace taskengine

#endif
