#ifndef VIDEODOWN_SITE_GATE_H
#define VIDEODOWN_SITE_GATE_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

/**
 * Where the site's threads wait on purpose: for a delay, or until a halted body may go on. Closing
 * it ends every wait, so that the site can stop at once. All members may be called on any thread.
 */
class Gate
{
public:
    /** Waits for a time. @return false when the gate is closed. */
    bool pause(std::chrono::nanoseconds time);
    /** Waits for the next release(). @return false when the gate is closed. */
    bool hold();
    /** Ends every hold() under way. */
    void release();
    /** Ends every wait, for good. */
    void close();
    bool isClosed() const;
    /** Waits until so many threads are in hold(). @return false when closed or out of time. */
    bool waitForHeld(std::size_t count, std::chrono::milliseconds limit) const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    // Protected by m_mutex:
    std::size_t m_held = 0;
    std::uint64_t m_releases = 0;
    bool m_closed = false;
};

#endif
