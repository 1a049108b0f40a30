/** The one lock that serialises everything a controller does. */
#ifndef VIDEODOWN_DOWN_CONTROLLERLOCK_H
#define VIDEODOWN_DOWN_CONTROLLERLOCK_H

#include "engine/annotatedmutex.h"
#include "engine/visibility.h"

#define VIDEODOWN_GUARDED VIDEODOWN_GUARDED_BY(controllerMutex)
#define VIDEODOWN_NEEDS_LOCK VIDEODOWN_REQUIRES(controllerMutex)

/** Names the lock. The lock itself is made on first use and never destroyed. */
class VIDEODOWN_PUBLIC VIDEODOWN_THREAD_ANNOTATION(capability("mutex")) ControllerMutex
{
public:
    /** Waits for the lock; a thread that has it takes it once more. */
    void lock() VIDEODOWN_THREAD_ANNOTATION(acquire_capability());
    /** Gives it back once. */
    void unlock() VIDEODOWN_THREAD_ANNOTATION(release_capability());
};

/**
 * Protects the controller's fields, the exported lists and flags, and every record in the task
 * list. Re-entrant: the controller's operations call each other, and callbacks call the controller.
 */
VIDEODOWN_PUBLIC extern ControllerMutex controllerMutex;

/**
 * Holds the lock for a scope. The controller's operations take it themselves; an application needs
 * it to read or write fields of a record or a global directly, or to make several calls one step.
 */
class VIDEODOWN_THREAD_ANNOTATION(scoped_lockable) ControllerLock
{
public:
    ControllerLock() VIDEODOWN_THREAD_ANNOTATION(acquire_capability(controllerMutex))
    {
        controllerMutex.lock();
    }
    ~ControllerLock() VIDEODOWN_THREAD_ANNOTATION(release_capability())
    {
        controllerMutex.unlock();
    }
    ControllerLock(const ControllerLock &) = delete;
    ControllerLock &operator=(const ControllerLock &) = delete;
};

/**
 * Lets go of the lock for a scope, however often this thread holds it, and takes it back as often.
 *
 * Application callbacks, file copies and renames run inside one: an engine that answers from inside
 * a request calls back on a thread that holds the lock further up, and must not drag it along. So
 * an operation that ran a callback may find the world changed when it goes on, and code that holds
 * the lock around an engine request keeps no record pointer across it.
 */
class VIDEODOWN_PUBLIC ControllerUnlock
{
public:
    ControllerUnlock();
    ~ControllerUnlock();
    ControllerUnlock(const ControllerUnlock &) = delete;
    ControllerUnlock &operator=(const ControllerUnlock &) = delete;

private:
    const int m_depth;
};

#endif
