#include "taskengine/connectionramp.h"

#include <algorithm>
#include <limits>

namespace taskengine {

namespace {

constexpr double soonest = 0.1;    ///< seconds before a gain is believed
constexpr double latest = 1;       ///< seconds after which there is none
constexpr double settledTime = 5;  ///< seconds between two looks at what was decided
constexpr double muchSlower = 0.7; ///< of the former rate

} // namespace

void ConnectionRamp::update(std::int64_t bytes, int receiving, Time now)
{
    const double seconds = std::chrono::duration<double>(now - m_since).count();
    if (m_begun && seconds < (m_settled ? settledTime : soonest))
        return;
    if (m_begun) {
        const double rate = static_cast<double>(bytes - m_base) / seconds;
        m_newest = rate / std::max(receiving, 1);
        m_begun = false;
        if (m_settled || receiving >= m_wanted)
            judge(rate, seconds);
        else
            m_rate = rate; // what the next one is compared with when it has come
    }
    if (m_begun)
        return;
    m_begun = true;
    m_base = bytes;
    m_since = now;
}

void ConnectionRamp::judge(double rate, double seconds)
{
    if (m_settled) {
        if (rate < m_rate * muchSlower)
            raise();
        m_rate = rate;
    } else if (m_rate < 0) {
        m_rate = rate;
        raise();
    } else {
        judgeLast(rate, seconds);
    }
}

void ConnectionRamp::judgeLast(double rate, double seconds)
{
    const bool isLate = seconds >= latest;
    const double share = m_rate / std::max(m_wanted - 1, 1); // what each had before
    if (rate > 0 && rate >= m_rate + share * (isLate ? 0.25 : 0.5)) {
        m_rate = rate;
        raise();
    } else if (isLate) {
        m_wanted = std::max(m_wanted - 1, 1);
        settle(rate);
    } else {
        m_begun = true; // the stretch goes on
    }
}

void ConnectionRamp::raise()
{
    m_settled = m_wanted >= m_most;
    m_wanted = std::min(m_wanted + 1, m_most);
}

void ConnectionRamp::settle(double rate)
{
    m_settled = true;
    m_rate = rate;
}

double ConnectionRamp::secondsFor(std::int64_t bytes) const
{
    if (m_newest < 0)
        return 0;
    return m_newest > 0 ? static_cast<double>(bytes) / m_newest
                        : std::numeric_limits<double>::infinity();
}

void ConnectionRamp::lose()
{
    m_wanted = std::max(m_wanted - 1, 1);
    settle(std::max(m_newest, 0.0) * m_wanted);
    restart();
}

void ConnectionRamp::limit(int connections)
{
    m_most = std::clamp(connections, 1, m_most);
    m_wanted = std::min(m_wanted, m_most);
    m_settled = true;
    restart();
}

} // namespace taskengine
