#include "taskengine/ratelimit.h"

#include "taskengine/settings.h"
#include "taskengine/transfer.h"

#include <algorithm>

namespace taskengine {

namespace {

/** What an idle time may be made up for; also how often a limit is noticed to have changed. */
constexpr std::chrono::duration<double> longestBurst{0.1};

/** The loop shall not turn for every few bytes. */
constexpr std::chrono::milliseconds shortestWait{5};

} // namespace

bool RateLimit::take(Transfer &transfer, std::size_t bytes)
{
    if (m_bytesPerSecond <= 0)
        return true;
    const bool mayTake = m_held.empty() || m_turn == &transfer;
    if (m_allowance > 0 && mayTake) {
        m_allowance -= static_cast<double>(bytes);
        return true;
    }
    ++m_holds;
    if (std::find(m_held.begin(), m_held.end(), &transfer) == m_held.end())
        m_held.push_back(&transfer);
    return false;
}

void RateLimit::forget(Transfer &transfer)
{
    m_held.erase(std::remove(m_held.begin(), m_held.end(), &transfer), m_held.end());
    if (m_turn == &transfer)
        m_turn = nullptr;
}

void RateLimit::tick(Clock::time_point now)
{
    m_bytesPerSecond = static_cast<double>(currentOptions()->rateLimit);
    const std::chrono::duration<double> passed = now - m_counted;
    m_counted = now;
    m_allowance = std::min(m_allowance + passed.count() * m_bytesPerSecond,
                           longestBurst.count() * m_bytesPerSecond);
    while (!m_held.empty() && (m_allowance > 0 || m_bytesPerSecond <= 0)) {
        m_turn = m_held.front();
        m_held.pop_front();
        m_turn->letGo();
    }
    m_turn = nullptr;
}

RateLimit::Clock::time_point RateLimit::wakeTime() const
{
    if (m_held.empty() || m_bytesPerSecond <= 0)
        return Clock::time_point::max();
    const std::chrono::duration<double> wait(
        std::clamp(-m_allowance / m_bytesPerSecond, 0.0, longestBurst.count()));
    return m_counted +
           std::max(std::chrono::ceil<Clock::duration>(wait), Clock::duration(shortestWait));
}

} // namespace taskengine
