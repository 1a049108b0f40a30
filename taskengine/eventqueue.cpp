#include "taskengine/eventqueue.h"

#include "engine/annotatedmutex.h"

#include <algorithm>
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

/** What the callback threads share; it lives for as long as one of them. */
struct EventDispatcher::Core : std::enable_shared_from_this<Core>
{
    void addThread() VIDEODOWN_REQUIRES(mutex);
    void callThread() VIDEODOWN_REQUIRES(mutex);
    void run();
    void deliverNext() VIDEODOWN_REQUIRES(mutex);

    AnnotatedMutex mutex;
    std::condition_variable wake; ///< work, or the end
    std::condition_variable done; ///< a callback has returned after `stopping` was set
    std::deque<std::shared_ptr<EventQueue>> ready VIDEODOWN_GUARDED_BY(mutex);
    std::vector<std::thread> threads VIDEODOWN_GUARDED_BY(mutex);
    std::size_t idle VIDEODOWN_GUARDED_BY(mutex) = 0;
    std::size_t active VIDEODOWN_GUARDED_BY(mutex) = 0;
    /** A thread is on its way to look for work. */
    bool called VIDEODOWN_GUARDED_BY(mutex) = false;
    bool stopping VIDEODOWN_GUARDED_BY(mutex) = false;
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
    const MutexLock lock(m_core->mutex);
    m_core->addThread();
}

EventDispatcher::~EventDispatcher()
{
    stop();
}

void EventDispatcher::Core::addThread()
{
    threads.emplace_back([core = shared_from_this()] { core->run(); });
}

void EventDispatcher::post(const std::shared_ptr<EventQueue> &queue, Event event)
{
    const MutexLock lock(m_core->mutex);
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
    const MutexLock lock(m_core->mutex);
    m_core->callThread();
}

/**
 * One thread at a time is on its way, and calls the next when it finds more than it takes: so quick
 * callbacks keep few threads busy, and slow ones get as many as needed.
 */
void EventDispatcher::Core::callThread()
{
    if (stopping || called || ready.empty())
        return;
    try {
        if (idle == 0)
            addThread();
        called = true;
        wake.notify_one();
    } catch (const std::system_error &) { // no more threads to be had: those there are will do
    }
}

void EventDispatcher::Core::run()
{
    const MutexLock lock(mutex);
    called = false;
    while (!stopping) {
        if (!ready.empty()) {
            deliverNext();
            continue;
        }
        ++idle;
        mutex.wait(wake);
        --idle;
        called = false;
    }
}

/** The mutex is open during the callback. */
void EventDispatcher::Core::deliverNext()
{
    std::shared_ptr<EventQueue> queue = std::move(ready.front());
    ready.pop_front();
    Event event = std::move(queue->m_pending.front());
    queue->m_pending.pop_front();
    callThread();
    ++active;
    mutex.unlock();
    insideCallback = true;
    queue->deliver(event);
    insideCallback = false;
    mutex.lock();
    --active;
    queue->m_scheduled = !queue->m_pending.empty() && !stopping;
    if (queue->m_scheduled)
        ready.push_back(std::move(queue));
    if (stopping)
        done.notify_all();
}

bool EventDispatcher::stop()
{
    std::vector<std::thread> threads;
    std::deque<std::shared_ptr<EventQueue>> dropped;
    {
        const MutexLock lock(m_core->mutex);
        m_core->stopping = true;
        m_core->wake.notify_all();
        threads.swap(m_core->threads);
        dropped.swap(m_core->ready);
        while (!insideCallback && m_core->active > 0)
            m_core->mutex.wait(m_core->done);
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
