#include "site/gate.h"

bool Gate::pause(std::chrono::nanoseconds time)
{
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_for(lock, time, [this] { return m_closed; });
}

bool Gate::hold()
{
    std::unique_lock lock(m_mutex);
    ++m_held;
    m_changed.notify_all();
    m_changed.wait(lock, [this, before = m_releases] { return m_closed || m_releases != before; });
    return !m_closed;
}

// Whom it lets go is held no longer from now on, not from when its thread wakes: whoever waits for
// the next to be held must not find the last.
void Gate::release()
{
    const std::lock_guard lock(m_mutex);
    ++m_releases;
    m_held = 0;
    m_changed.notify_all();
}

void Gate::close()
{
    const std::lock_guard lock(m_mutex);
    m_closed = true;
    m_changed.notify_all();
}

bool Gate::isClosed() const
{
    const std::lock_guard lock(m_mutex);
    return m_closed;
}

bool Gate::waitForHeld(std::size_t count, std::chrono::milliseconds limit) const
{
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, limit, [this, count] { return m_closed || m_held >= count; });
    return !m_closed && m_held >= count;
}
