/** The work for one request: tries, delays, pauses and the events that report them. */
#ifndef VIDEODOWN_TASKENGINE_JOB_H
#define VIDEODOWN_TASKENGINE_JOB_H

#include "taskengine/fault.h"
#include "taskengine/hostconnections.h"
#include "taskengine/request.h"
#include "taskengine/requestheaders.h"
#include "taskengine/transfer.h"

#include <memory>
#include <string>
#include <unordered_set>
#include <utility>

namespace taskengine {

/** What jobs share. */
struct JobContext
{
    CURLM *multi;
    RateLimit &rate;
    EventDispatcher &events;
    RequestHeaders &headers;
    HostConnections &hosts;
    std::unordered_set<std::string> &mutes; ///< hosts that have no video-info responses
};

/** Adds what tells the site who asks and from which page: the same for each request of a task. */
void introduce(TransferRequest &transfer, const Request &task, const RequestHeaders &headers);

/**
 * Lives on the transfer thread, from the start of its request until its terminal event is queued.
 * Files are in their final state before that; those of a complete download are handed to a
 * `Completion` that goes with the event.
 */
class Job
{
public:
    /** @return the job for this kind of request */
    static std::unique_ptr<Job> create(const RequestPointer &request, const JobContext &context);

    Job(RequestPointer request, const JobContext &context);
    Job(const Job &) = delete;
    Job &operator=(const Job &) = delete;
    virtual ~Job() = default;

    void start();
    void stop();
    void togglePause();

    /** Ends without an event, when the engine quits. */
    void abandon();

    /** Does what has become due. */
    void tick(Clock::time_point now);

    /** @return when `tick` is needed next at the latest */
    virtual Clock::time_point wakeTime() const;

    /** @return a descriptor whose input `tick` reads, or -1 */
    virtual int inputDescriptor() const { return -1; }

    bool isOver() const { return m_over; }

    /** @return the job that goes on with the request after this one is over; null: none does */
    std::unique_ptr<Job> takeSuccessor() { return std::move(m_successor); }

protected:
    const Request &request() const { return *m_request; }
    const RequestPointer &requestPointer() const { return m_request; }
    const JobContext &context() const { return m_context; }
    const Options &options() const { return *m_request->options; }
    const std::shared_ptr<TargetFile> &target() const { return m_request->target; }
    CURLM *multi() const { return m_context.multi; }
    RequestHeaders &headers() const { return m_context.headers; }
    bool isPaused() const { return m_paused; }
    bool isTrying() const { return !m_waiting && !m_over; }

    void post(tagDownloadStateCode code, double value = 0);

    /** Ends the try: with another one after a delay, if the fault allows it, or the request. */
    void fail(const Fault &fault);

    /** Ends the request with this event. */
    void finish(Event event);

private:
    /** Begins a try. May call `fail` or `finish`. */
    virtual void beginTry() = 0;
    /** Ends what the try has going on; its results stay. */
    virtual void cutTry() = 0;
    /**
     * Leaves the files as they shall stay. @param mayContinue a later request could go on
     * @return what remains to be done before the last event; null: nothing
     */
    virtual std::unique_ptr<Completion> leaveFiles(bool) { return nullptr; }
    virtual void work(Clock::time_point now) = 0;
    /** Holds the work, or lets it go on. Comes whether a try is under way or not. */
    virtual void setPaused(bool paused) = 0;
    /** @return whether a fault that may pass is worth another try */
    virtual bool isWorthRetrying(const Fault &) const { return true; }

    /** @return what goes on with the request instead of giving up; null: nothing */
    virtual std::unique_ptr<Job> alternative(const Fault &) { return nullptr; }

    void takeOver(bool paused);
    std::unique_ptr<Completion> cleanUp(bool mayContinue);
    bool mayTryAgain(const Fault &fault) const;
    void scheduleTry(const Fault &fault);
    void giveUp(const Fault &fault);

    const RequestPointer m_request;
    const JobContext m_context;
    int m_try = 1;
    bool m_waiting = false; ///< for `m_nextTry`
    bool m_paused = false;
    bool m_over = false;
    std::unique_ptr<Job> m_successor;
    Clock::time_point m_nextTry;
};

} // namespace taskengine

#endif
