/** Where the engine's threads leave their events for the application's thread. */
#ifndef VIDEODOWN_DRIVER_ENGINEMAILBOX_H
#define VIDEODOWN_DRIVER_ENGINEMAILBOX_H

#include "engine/annotatedmutex.h"
#include "engine/taskengine.h"

#include <QString>

#include <functional>
#include <vector>

/** One event of the controller's application callbacks. */
struct EngineEvent
{
    QString key; ///< task key or image key
    tagDownloadStateCode code = DOWN_STATE_NONE;
    double value = 0; ///< depends on the code
};

/**
 * The two application callbacks, and the queue behind them. A callback only queues and wakes, so
 * that no engine thread ever waits for the application.
 *
 * Its address is the callbacks' user pointer: it must live until the engine has quit. Threads: all
 * members may be called from any thread.
 */
class EngineMailbox
{
public:
    /** @param wake called on the engine's threads after each event; must only set something going
     */
    explicit EngineMailbox(std::function<void()> wake);

    /** For `tagDownInfo::pfnStateCallback`. */
    static int onState(void *user, const char *key, tagDownloadStateCode code, double value,
                       FILE_TYPE type);
    /** For `tagDownInfo::pfnVideoInfoCallback`. */
    static int onVideoInfo(void *user, const char *key, tagDownloadStateCode code, char *data,
                           unsigned long length);

    /** Gets the size of a task's video as soon as it is known, on an engine's thread. */
    using SizeListener = std::function<void(const QString &key, qint64 bytes)>;
    /** From when this returns, only the new listener is called, or none. */
    void setSizeListener(SizeListener listener);

    /** Takes all events out, oldest first. */
    std::vector<EngineEvent> take();
    /** Whether the end of this key's request lies in the box. */
    bool holdsEndOf(const QString &key) const;

private:
    void announceSize(const char *key, double value);
    void post(const char *key, tagDownloadStateCode code, double value);

    const std::function<void()> m_wake;
    AnnotatedMutex m_listenerMutex; // held also while the listener is called
    SizeListener m_sizeListener VIDEODOWN_GUARDED_BY(m_listenerMutex);
    mutable AnnotatedMutex m_mutex;
    std::vector<EngineEvent> m_events VIDEODOWN_GUARDED_BY(m_mutex); // oldest first
};

#endif
