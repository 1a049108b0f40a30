/** How long a request waits before its next try. */
#ifndef VIDEODOWN_TASKENGINE_RETRYDELAY_H
#define VIDEODOWN_TASKENGINE_RETRYDELAY_H

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace taskengine {

/** No try waits longer, whatever the request or the site asks for. */
constexpr std::chrono::milliseconds longestDelay{30000};

/**
 * Doubles with every try.
 * @param next number of the try to wait for, 2 or more
 * @param first delay before the second try, in milliseconds; none when negative
 */
inline std::chrono::milliseconds delayBefore(int next, std::int32_t first)
{
    std::chrono::milliseconds delay(std::max<std::int32_t>(first, 0));
    for (int number = 2; number < next && delay < longestDelay; ++number)
        delay *= 2;
    return std::min(delay, longestDelay);
}

/** @param seconds what the site asks for; none when negative */
inline std::chrono::milliseconds retryAfterDelay(std::int64_t seconds)
{
    const std::int64_t longest = longestDelay / std::chrono::seconds(1);
    return std::chrono::seconds(std::clamp<std::int64_t>(seconds, 0, longest));
}

} // namespace taskengine

#endif
