#include "driver/enginemailbox.h"

#include <algorithm>
#include <utility>

EngineMailbox::EngineMailbox(std::function<void()> wake) : m_wake(std::move(wake)) {}

int EngineMailbox::onState(void *user, const char *key, tagDownloadStateCode code, double value,
                           FILE_TYPE /*type*/)
{
    auto &mailbox = *static_cast<EngineMailbox *>(user);
    if (code == DOWN_STATE_FILE_SIZE)
        mailbox.announceSize(key, value);
    mailbox.post(key, code, value);
    return 0;
}

int EngineMailbox::onVideoInfo(void *user, const char *key, tagDownloadStateCode code,
                               char * /*data*/, unsigned long /*length*/)
{
    static_cast<EngineMailbox *>(user)->post(key, code, 0);
    return 0;
}

void EngineMailbox::setSizeListener(SizeListener listener)
{
    const MutexLock lock(m_listenerMutex);
    m_sizeListener = std::move(listener);
}

void EngineMailbox::announceSize(const char *key, double value)
{
    const MutexLock lock(m_listenerMutex);
    if (m_sizeListener && value > 0 && value < 9e18)
        m_sizeListener(QString::fromLocal8Bit(key), qint64(value));
}

void EngineMailbox::post(const char *key, tagDownloadStateCode code, double value)
{
    {
        const MutexLock lock(m_mutex);
        m_events.push_back({QString::fromLocal8Bit(key), code, value});
    }
    m_wake();
}

std::vector<EngineEvent> EngineMailbox::take()
{
    const MutexLock lock(m_mutex);
    return std::exchange(m_events, {});
}

bool EngineMailbox::holdsEndOf(const QString &key) const
{
    const MutexLock lock(m_mutex);
    return std::any_of(m_events.cbegin(), m_events.cend(), [&key](const EngineEvent &event) {
        return event.key == key && isTerminal(event.code);
    });
}
