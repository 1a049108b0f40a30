/** How far a download is, and how fast. */
#ifndef VIDEODOWN_TASKENGINE_PROGRESSMETER_H
#define VIDEODOWN_TASKENGINE_PROGRESSMETER_H

#include <chrono>
#include <cstdint>
#include <optional>

namespace taskengine {

/** Decides when progress and speed are worth an event. */
class ProgressMeter
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /** A try begins with `position` bytes on disk. */
    void restart(std::int64_t position, Time now);

    /** @return the position to report, at most four times a second and only when it changed */
    std::optional<std::int64_t> progress(std::int64_t position, Time now);

    /** @return bytes per second since the last answer, once a second */
    std::optional<double> speed(std::int64_t position, Time now);

    /** @return whether `position` was not the last that was reported */
    bool isNews(std::int64_t position) const { return position != m_reported; }

private:
    std::int64_t m_reported = 0;
    std::int64_t m_measured = 0;
    Time m_reportedAt;
    Time m_measuredAt;
};

} // namespace taskengine

#endif
