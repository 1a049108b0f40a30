/** The rate that all transfers share. */
#ifndef VIDEODOWN_TASKENGINE_RATELIMIT_H
#define VIDEODOWN_TASKENGINE_RATELIMIT_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>

namespace taskengine {

class Transfer;

/**
 * Holds transfers back that have more data than the rate allows, and lets them go on one after the
 * other: what a slow one leaves is the others'. Used on the transfer thread only.
 */
class RateLimit
{
public:
    using Clock = std::chrono::steady_clock;

    /** @return whether these bytes may come in now; if not, `Transfer::letGo` tells when */
    bool take(Transfer &transfer, std::size_t bytes);

    /** @return how often it has held something back so far */
    std::uint64_t holds() const { return m_holds; }

    /** Nobody waits for this transfer any more. */
    void forget(Transfer &transfer);

    /** Takes the option's value over, and lets go on what has its turn. */
    void tick(Clock::time_point now);

    /** @return when `tick` is needed next at the latest */
    Clock::time_point wakeTime() const;

private:
    double m_bytesPerSecond = 0; ///< 0: no limit
    double m_allowance = 0;      ///< bytes; below 0 when the last piece was larger
    std::uint64_t m_holds = 0;
    Clock::time_point m_counted; ///< up to when the allowance has grown
    std::deque<Transfer *> m_held;
    Transfer *m_turn = nullptr; ///< it has been let go, while others wait
};

} // namespace taskengine

#endif
