/** How many connections make a download faster. */
#ifndef VIDEODOWN_TASKENGINE_CONNECTIONRAMP_H
#define VIDEODOWN_TASKENGINE_CONNECTIONRAMP_H

#include <chrono>
#include <cstdint>

namespace taskengine {

/**
 * Asks for one connection more at a time, as long as the last one made the whole faster. Gains show
 * soon; that there is none is believed after a second only, because data come in bursts. What was
 * given up is tried again once the whole has become much slower.
 */
class ConnectionRamp
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /** @param most connections that may ever be wanted */
    explicit ConnectionRamp(int most) : m_most(most) {}

    /**
     * @param bytes received by all connections so far
     * @param receiving connections that have begun to receive
     */
    void update(std::int64_t bytes, int receiving, Time now);

    /** @return connections that are worth while */
    int wanted() const { return m_wanted; }

    /** @return seconds that one connection needs for `bytes`; 0 before the first measurement */
    double secondsFor(std::int64_t bytes) const;

    /** Measures anew, after a pause or under a rate limit. */
    void restart() { m_begun = false; }

    /** A connection was lost: goes on with one less for now. */
    void lose();

    /** The site has refused more than `connections`: that many are the limit from now on. */
    void limit(int connections);

private:
    void judge(double rate, double seconds);
    void judgeLast(double rate, double seconds);
    void settle(double rate);
    void raise();

    int m_most;
    int m_wanted = 1;
    double m_rate = -1;   ///< bytes per second before the last step, or when it was decided to stay
    double m_newest = -1; ///< what was measured last, of one connection
    bool m_settled = false;
    bool m_begun = false; ///< a stretch is being measured, from `m_since` and `m_base` on
    std::int64_t m_base = 0;
    Time m_since;
};

} // namespace taskengine

#endif
