#include "taskengine/progressmeter.h"

namespace taskengine {

namespace {

constexpr std::chrono::milliseconds progressInterval{250};
constexpr std::chrono::milliseconds speedInterval{1000};

} // namespace

void ProgressMeter::restart(std::int64_t position, Time now)
{
    m_measured = position;
    m_measuredAt = now;
}

std::optional<std::int64_t> ProgressMeter::progress(std::int64_t position, Time now)
{
    if (!isNews(position) || now - m_reportedAt < progressInterval)
        return std::nullopt;
    m_reported = position;
    m_reportedAt = now;
    return position;
}

std::optional<double> ProgressMeter::speed(std::int64_t position, Time now)
{
    const std::chrono::duration<double> passed = now - m_measuredAt;
    if (passed < speedInterval)
        return std::nullopt;
    const auto bytes = static_cast<double>(position - m_measured);
    m_measured = position;
    m_measuredAt = now;
    return bytes / passed.count();
}

} // namespace taskengine
