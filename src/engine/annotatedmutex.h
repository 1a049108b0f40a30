/** A mutex whose rules clang checks at compile time (-Wthread-safety); other compilers skip them.
 */
#ifndef VIDEODOWN_ENGINE_ANNOTATEDMUTEX_H
#define VIDEODOWN_ENGINE_ANNOTATEDMUTEX_H

#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define VIDEODOWN_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define VIDEODOWN_THREAD_ANNOTATION(x)
#endif
/** Behind a field: to be used with this mutex held only. */
#define VIDEODOWN_GUARDED_BY(mutex) VIDEODOWN_THREAD_ANNOTATION(guarded_by(mutex))
/** Behind a function: to be called with this mutex held only. */
#define VIDEODOWN_REQUIRES(mutex) VIDEODOWN_THREAD_ANNOTATION(requires_capability(mutex))

/**
 * `std::mutex` with the annotations that the standard library's own lacks. Not re-entrant.
 */
class VIDEODOWN_THREAD_ANNOTATION(capability("mutex")) AnnotatedMutex
{
public:
    AnnotatedMutex() = default;
    AnnotatedMutex(const AnnotatedMutex &) = delete;
    AnnotatedMutex &operator=(const AnnotatedMutex &) = delete;

    /** Waits for the mutex. */
    void lock() VIDEODOWN_THREAD_ANNOTATION(acquire_capability()) { m_mutex.lock(); }
    /** Gives it back. */
    void unlock() VIDEODOWN_THREAD_ANNOTATION(release_capability()) { m_mutex.unlock(); }

    /** Waits for a condition, with the mutex given back meanwhile; may return without one. */
    void wait(std::condition_variable &condition) VIDEODOWN_REQUIRES(this)
    {
        std::unique_lock<std::mutex> lock(m_mutex, std::adopt_lock);
        condition.wait(lock);
        lock.release();
    }

private:
    std::mutex m_mutex;
};

/** Holds an AnnotatedMutex for a scope. */
class VIDEODOWN_THREAD_ANNOTATION(scoped_lockable) MutexLock
{
public:
    explicit MutexLock(AnnotatedMutex &mutex) VIDEODOWN_THREAD_ANNOTATION(acquire_capability(mutex))
        : m_mutex(mutex)
    {
        m_mutex.lock();
    }
    ~MutexLock() VIDEODOWN_THREAD_ANNOTATION(release_capability()) { m_mutex.unlock(); }
    MutexLock(const MutexLock &) = delete;
    MutexLock &operator=(const MutexLock &) = delete;

private:
    AnnotatedMutex &m_mutex;
};

#endif
