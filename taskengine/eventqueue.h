/** Delivery of events: in order within a request, side by side between requests. */
#ifndef VIDEODOWN_TASKENGINE_EVENTQUEUE_H
#define VIDEODOWN_TASKENGINE_EVENTQUEUE_H

#include "engine/taskengine.h"
#include "taskengine/fault.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace taskengine {

/** The last step of a request, done when every earlier event has been delivered. */
class Completion
{
public:
    Completion() = default;
    Completion(const Completion &) = delete;
    Completion &operator=(const Completion &) = delete;
    /** Unless the step was done, leaves things for a later request. */
    virtual ~Completion() = default;

    /** Does the step, on a callback thread. @return why that failed */
    virtual std::optional<Fault> commit() = 0;
};

/** One call of a callback. */
struct Event
{
    tagDownloadStateCode code;
    double value = 0;
    std::string text{}; ///< the response that goes with DOWN_STATE_PARSE_SUCCESS
    std::unique_ptr<Completion> completion{}; ///< comes before a terminal event
};

/** The events of one request that are still to be delivered. */
class EventQueue
{
public:
    EventQueue() = default;
    EventQueue(const EventQueue &) = delete;
    EventQueue &operator=(const EventQueue &) = delete;
    virtual ~EventQueue() = default;

    /** Makes the call. Runs on a callback thread, never twice at a time, without any lock. */
    virtual void deliver(Event &event) = 0;

private:
    friend class EventDispatcher;

    void add(Event event);

    // Guarded by the dispatcher's mutex.
    std::deque<Event> m_pending;
    bool m_scheduled = false;
};

/**
 * The callback threads. There are as many as were ever needed at a time, so that a callback that
 * takes long keeps nothing waiting but the later events of its own request.
 */
class EventDispatcher
{
public:
    /** Starts the first thread. @throws std::system_error when there can be none */
    EventDispatcher();
    EventDispatcher(const EventDispatcher &) = delete;
    EventDispatcher &operator=(const EventDispatcher &) = delete;
    ~EventDispatcher();

    /**
     * Queues an event, to be delivered from the next `wake` on, if not before; dropped after
     * `stop`. Any thread; does not wait for callbacks.
     */
    void post(const std::shared_ptr<EventQueue> &queue, Event event);

    /** Sees to it that what is queued is delivered. Once for many events costs the least. */
    void wake();

    /**
     * Drops what is queued, waits for the callbacks in flight and ends the threads. From inside a
     * callback it does not wait: that callback may be waiting for this one. May be called more than
     * once and by several threads.
     * @return whether no callback is in flight any more
     */
    bool stop();

private:
    struct Core;

    /** Shared with the threads, which may outlive this object by the callback they are in. */
    std::shared_ptr<Core> m_core;
};

} // namespace taskengine

#endif
