#include "taskengine/eventqueue.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace taskengine {

namespace {

/** Whether this thread is inside a callback, of whichever dispatcher. */
thread_local bool insideCallback = false;

bool isMeasurement(tagDownloadStateCode code)
{
    return code == DOWN_STATE_DOWNLOAD_PROGRESS || code == DOWN_STATE_DOWNLOAD_SPEED;
}

} // namespace

struct EventDispatcher::Core
{
    std::mutex mutex;
    std::condition_variable wake; ///< work, or the end
    std::condition_variable done; ///< a callback has returned after `stopping` was set

    // Guarded by `mutex`.
    std::deque<std::shared_ptr<EventQueue>> ready;
    std::vector<std::thread> threads;
    std::size_t idle = 0;
    std::size_t active = 0;
    bool called = false; ///< a thread is on its way to look for work
    bool stopping = false;
};

/** A newer measurement takes the place of an older one that nobody has fetched yet. */
void EventQueue::add(Event event)
{
    const auto same = std::find_if(m_pending.begin(), m_pending.end(), [&event](const Event &old) {
        return old.code == event.code && isMeasurement(old.code);
    });
    if (same != m_pending.end())
        same->value = event.value;
    else
        m_pending.push_back(std::move(event));
}

EventDispatcher::EventDispatcher() : m_core(std::make_shared<Core>())
{
    addThread(m_core);
}

EventDispatcher::~EventDispatcher()
{
    stop();
}

void EventDispatcher::addThread(const std::shared_ptr<Core> &core)
{
    core->threads.emplace_back([core] { run(core); });
}

void EventDispatcher::post(const std::shared_ptr<EventQueue> &queue, Event event)
{
    const std::lock_guard<std::mutex> lock(m_core->mutex);
    if (m_core->stopping)
        return;
    queue->add(std::move(event));
    if (queue->m_scheduled)
        return;
    queue->m_scheduled = true;
    m_core->ready.push_back(queue);
}

void EventDispatcher::wake()
{
    const std::lock_guard<std::mutex> lock(m_core->mutex);
    callThread(m_core);
}

/**
 * Called with the mutex locked. One thread at a time is on its way, and calls the next when it
 * finds more than it takes: so quick callbacks keep few threads busy, and slow ones get as many as
 * needed.
 */
void EventDispatcher::callThread(const std::shared_ptr<Core> &core)
{
    if (core->stopping || core->called || core->ready.empty())
        return;
    try {
        if (core->idle == 0)
            addThread(core);
        core->called = true;
        core->wake.notify_one();
    } catch (const std::system_error &) { // no more threads to be had: those there are will do
    }
}

void EventDispatcher::run(const std::shared_ptr<Core> &core)
{
    std::unique_lock<std::mutex> lock(core->mutex);
    core->called = false;
    while (!core->stopping) {
        if (!core->ready.empty()) {
            deliverNext(core);
            continue;
        }
        ++core->idle;
        core->wake.wait(lock);
        --core->idle;
        core->called = false;
    }
}

/** Called and left with the mutex locked; it is open during the callback. */
void EventDispatcher::deliverNext(const std::shared_ptr<Core> &core)
{
    std::shared_ptr<EventQueue> queue = std::move(core->ready.front());
    core->ready.pop_front();
    Event event = std::move(queue->m_pending.front());
    queue->m_pending.pop_front();
    callThread(core);
    ++core->active;
    core->mutex.unlock();
    insideCallback = true;
    queue->deliver(event);
    insideCallback = false;
    core->mutex.lock();
    --core->active;
    queue->m_scheduled = !queue->m_pending.empty() && !core->stopping;
    if (queue->m_scheduled)
        core->ready.push_back(std::move(queue));
    if (core->stopping)
        core->done.notify_all();
}

bool EventDispatcher::stop()
{
    std::vector<std::thread> threads;
    std::deque<std::shared_ptr<EventQueue>> dropped;
    {
        std::unique_lock<std::mutex> lock(m_core->mutex);
        m_core->stopping = true;
        m_core->wake.notify_all();
        threads.swap(m_core->threads);
        dropped.swap(m_core->ready);
        if (!insideCallback)
            m_core->done.wait(lock, [this] { return m_core->active == 0; });
    }
    for (std::thread &thread : threads) {
        if (insideCallback)
            thread.detach();
        else
            thread.join();
    }
    return !insideCallback;
}

} // namespace taskengine
